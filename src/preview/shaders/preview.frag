// Phong with a half vector and one point light. TEXTURED is defined for the textured technique.
const vec3 g_vLightColor = vec3(1.0, 1.0, 1.0);
const vec3 g_vMtlA = vec3(0.0, 0.0, 0.0);
const vec3 g_vMtlD = vec3(0.5, 0.5, 0.5);
const vec4 g_vMtlS = vec4(1.0, 1.0, 1.0, 1.0);
const float g_vMtlN = 150.0;

uniform sampler2D TxDiffuse;

in vec3 vNormal;
in vec3 vLight;
in vec3 vView;
in vec2 vTexCoord;

out vec4 outColour;

void main() {
  vec3 N = normalize(vNormal);
  vec3 L = normalize(vLight);
  vec3 V = normalize(vView);
  vec3 H = normalize(V + L);
  float nDotL = dot(L, N);
  float nDotH = dot(H, N);
  float d = max(nDotL, 0.0);
  float s = (nDotL < 0.0 || nDotH < 0.0) ? 0.0 : pow(nDotH, g_vMtlN);
  vec3 diffuse = d * g_vLightColor;
  vec3 specular = d * s * g_vMtlS.rgb * g_vLightColor;
  diffuse = clamp(diffuse - 0.25, 0.0, 1.0) + 0.25;
#ifdef TEXTURED
  outColour = vec4(texture(TxDiffuse, vTexCoord).rgb * (diffuse + g_vMtlA), 1.0);
#else
  outColour = vec4(specular + g_vMtlD * (diffuse + g_vMtlA), 1.0);
#endif
}
