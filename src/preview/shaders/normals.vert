#version 330 core
layout(location = 0) in vec3 inPosition;
layout(location = 1) in vec3 inNormal;

uniform mat4 World;

out vec3 vWorldPosition;
out vec3 vWorldNormal;

void main() {
  vWorldPosition = (World * vec4(inPosition, 1.0)).xyz;
  vWorldNormal = mat3(World) * inNormal;
  gl_Position = vec4(vWorldPosition, 1.0);
}
