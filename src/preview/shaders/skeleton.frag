#version 330 core
// One flat colour that no grey and few textures come near.
uniform vec3 Colour;

out vec4 outColour;

void main() { outColour = vec4(Colour, 1.0); }
