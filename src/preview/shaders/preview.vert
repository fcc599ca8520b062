#version 330 core
// Row-vector matrices arrive as they are stored, so in GLSL each is its own transpose and the
// products read right to left.
layout(location = 0) in vec3 inPosition;
layout(location = 1) in vec3 inNormal;
layout(location = 2) in vec2 inTexCoord;

uniform mat4 World;
uniform mat4 View;
uniform mat4 ViewInverse;
uniform mat4 Projection;

const vec3 g_vLightPosition = vec3(0.0, 0.0, 1000.0);

out vec3 vNormal;
out vec3 vLight;
out vec3 vView;
out vec2 vTexCoord;

void main() {
  vec4 worldPosition = World * vec4(inPosition, 1.0);
  gl_Position = Projection * (View * worldPosition);
  // The projection gives depth from 0 to 1; the clip space here runs from -1.
  gl_Position.z = 2.0 * gl_Position.z - gl_Position.w;
  vNormal = mat3(World) * inNormal;
  vLight = -normalize(worldPosition.xyz - g_vLightPosition);
  vView = normalize(ViewInverse[3].xyz - worldPosition.xyz);
  vTexCoord = inTexCoord;
}
