#version 330 core
// An image shown whole: a quad over Rect (left, bottom, right, top in clip space), its corners made
// from the vertex number of a four-vertex strip, so that it needs no buffer.
uniform vec4 Rect;

out vec2 texCoord;

void main() {
  vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
  gl_Position = vec4(mix(Rect.xy, Rect.zw, corner), 0.0, 1.0);
  // The first row stored is the image's top, at v = 0.
  texCoord = vec2(corner.x, 1.0 - corner.y);
}
