#version 330 core
// The skeleton view: joints and bones in the model's space, placed as the meshes are.
layout(location = 0) in vec3 inPosition;

uniform mat4 World;
uniform mat4 View;
uniform mat4 Projection;

void main() {
  gl_Position = Projection * (View * (World * vec4(inPosition, 1.0)));
  gl_Position.z = 2.0 * gl_Position.z - gl_Position.w;
}
