#version 330 core
// A line of length 0.1 from each corner along its normal.
layout(triangles) in;
layout(line_strip, max_vertices = 6) out;

uniform mat4 View;
uniform mat4 Projection;

in vec3 vWorldPosition[];
in vec3 vWorldNormal[];

vec4 ToClip(vec3 position) {
  vec4 clip = Projection * (View * vec4(position, 1.0));
  clip.z = 2.0 * clip.z - clip.w;
  return clip;
}

void main() {
  for (int i = 0; i < 3; ++i) {
    gl_Position = ToClip(vWorldPosition[i]);
    EmitVertex();
    gl_Position = ToClip(vWorldPosition[i] + normalize(vWorldNormal[i]) * 0.1);
    EmitVertex();
    EndPrimitive();
  }
}
