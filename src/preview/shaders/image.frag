#version 330 core
// The image's colours over a checkerboard where they are see-through, so that transparency shows
// as such rather than as black; neither grey is the clear colour around the image.
uniform sampler2D TxDiffuse;

in vec2 texCoord;
out vec4 outColour;

const float kSquare = 8.0;  // pixels

void main() {
  vec4 texel = texture(TxDiffuse, texCoord);
  ivec2 square = ivec2(gl_FragCoord.xy / kSquare);
  vec3 board = ((square.x + square.y) & 1) == 1 ? vec3(0.55) : vec3(0.9);
  outColour = vec4(mix(board, texel.rgb, texel.a), 1.0);
}
