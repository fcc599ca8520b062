#version 330 core
out vec4 outColour;

void main() { outColour = vec4(1.0, 0.0, 0.0, 1.0); }
