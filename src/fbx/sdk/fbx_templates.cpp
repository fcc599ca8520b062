#include "fbx/sdk/fbx_templates.h"

#include <span>

#include "fbx/sdk/fbx_properties.h"

namespace {

// One Properties70 row: name, type, label, flags, and its value as `value` says.
struct Row {
  const char* name;
  const char* type;
  const char* label;
  const char* flags;
  char value;  // 'I' one int, 'D' one double, '3' three doubles, 'S' the text, 0 none
  f64 x = 0, y = 0, z = 0;
  const char* text = "";
};

constexpr Row Vector(const char* name, f64 x = 0, f64 y = 0, f64 z = 0) {
  return {name, "Vector3D", "Vector", "", '3', x, y, z};
}
constexpr Row Bool(const char* name, bool value = false) { return {name, "bool", "", "", 'I', value ? 1.0 : 0.0}; }
constexpr Row Enum(const char* name) { return {name, "enum", "", "", 'I'}; }
constexpr Row Double(const char* name, f64 value = 0) { return {name, "double", "Number", "", 'D', value}; }
constexpr Row Color(const char* name, f64 v) { return {name, "Color", "", "A", '3', v, v, v}; }
constexpr Row ColorRGB(const char* name, f64 v) { return {name, "ColorRGB", "Color", "", '3', v, v, v}; }
constexpr Row Number(const char* name, f64 v) { return {name, "Number", "", "A", 'D', v}; }

constexpr Row kNodeRows[] = {
    Enum("QuaternionInterpolate"),
    Vector("RotationOffset"),
    Vector("RotationPivot"),
    Vector("ScalingOffset"),
    Vector("ScalingPivot"),
    Bool("TranslationActive"),
    Vector("TranslationMin"),
    Vector("TranslationMax"),
    Bool("TranslationMinX"),
    Bool("TranslationMinY"),
    Bool("TranslationMinZ"),
    Bool("TranslationMaxX"),
    Bool("TranslationMaxY"),
    Bool("TranslationMaxZ"),
    Enum("RotationOrder"),
    Bool("RotationSpaceForLimitOnly"),
    Double("RotationStiffnessX"),
    Double("RotationStiffnessY"),
    Double("RotationStiffnessZ"),
    Double("AxisLen", 10),
    Vector("PreRotation"),
    Vector("PostRotation"),
    Bool("RotationActive"),
    Vector("RotationMin"),
    Vector("RotationMax"),
    Bool("RotationMinX"),
    Bool("RotationMinY"),
    Bool("RotationMinZ"),
    Bool("RotationMaxX"),
    Bool("RotationMaxY"),
    Bool("RotationMaxZ"),
    Enum("InheritType"),
    Bool("ScalingActive"),
    Vector("ScalingMin"),
    Vector("ScalingMax", 1, 1, 1),
    Bool("ScalingMinX"),
    Bool("ScalingMinY"),
    Bool("ScalingMinZ"),
    Bool("ScalingMaxX"),
    Bool("ScalingMaxY"),
    Bool("ScalingMaxZ"),
    Vector("GeometricTranslation"),
    Vector("GeometricRotation"),
    Vector("GeometricScaling", 1, 1, 1),
    Double("MinDampRangeX"),
    Double("MinDampRangeY"),
    Double("MinDampRangeZ"),
    Double("MaxDampRangeX"),
    Double("MaxDampRangeY"),
    Double("MaxDampRangeZ"),
    Double("MinDampStrengthX"),
    Double("MinDampStrengthY"),
    Double("MinDampStrengthZ"),
    Double("MaxDampStrengthX"),
    Double("MaxDampStrengthY"),
    Double("MaxDampStrengthZ"),
    Double("PreferedAngleX"),
    Double("PreferedAngleY"),
    Double("PreferedAngleZ"),
    {"LookAtProperty", "object", "", "", 0},
    {"UpVectorProperty", "object", "", "", 0},
    Bool("Show", true),
    Bool("NegativePercentShapeSupport", true),
    {"DefaultAttributeIndex", "int", "Integer", "", 'I', -1},
    Bool("Freeze"),
    Bool("LODBox"),
    {"Lcl Translation", "Lcl Translation", "", "A", '3'},
    {"Lcl Rotation", "Lcl Rotation", "", "A", '3'},
    {"Lcl Scaling", "Lcl Scaling", "", "A", '3', 1, 1, 1},
    {"Visibility", "Visibility", "", "A", 'D', 1},
    {"Visibility Inheritance", "Visibility Inheritance", "", "", 'I', 1},
};

constexpr Row kSkeletonRows[] = {
    ColorRGB("Color", 0.8),
    Double("Size", 100),
    {"LimbLength", "double", "Number", "H", 'D', 1},
};

constexpr Row kMeshRows[] = {
    ColorRGB("Color", 0.8),           Vector("BBoxMin"),           Vector("BBoxMax"),
    Bool("Primary Visibility", true), Bool("Casts Shadows", true), Bool("Receive Shadows", true),
};

constexpr Row kPhongRows[] = {
    {"ShadingModel", "KString", "", "", 'S', 0, 0, 0, "Phong"},
    Bool("MultiLayer"),
    Color("EmissiveColor", 0),
    Number("EmissiveFactor", 1),
    Color("AmbientColor", 0.2),
    Number("AmbientFactor", 1),
    Color("DiffuseColor", 0.8),
    Number("DiffuseFactor", 1),
    Vector("Bump"),
    Vector("NormalMap"),
    Double("BumpFactor", 1),
    Color("TransparentColor", 0),
    Number("TransparencyFactor", 0),
    ColorRGB("DisplacementColor", 0),
    Double("DisplacementFactor", 1),
    ColorRGB("VectorDisplacementColor", 0),
    Double("VectorDisplacementFactor", 1),
    Color("SpecularColor", 0.2),
    Number("SpecularFactor", 1),
    Number("ShininessExponent", 20),
    Color("ReflectionColor", 0),
    Number("ReflectionFactor", 1),
};

bool AddRows(FbxRecord& properties, std::span<const Row> rows) {
  for (const Row& row : rows) {
    bool ok = false;
    switch (row.value) {
      case 'I': ok = AddIntRow(properties, row.name, row.type, row.label, row.flags, i32(row.x)); break;
      case 'D': ok = AddDoubleRow(properties, row.name, row.type, row.label, row.flags, {row.x}); break;
      case '3': ok = AddDoubleRow(properties, row.name, row.type, row.label, row.flags, {row.x, row.y, row.z}); break;
      case 'S': ok = AddStringRow(properties, row.name, row.type, row.label, row.flags, row.text); break;
      default: ok = AddRow(properties, row.name, row.type, row.label, row.flags); break;
    }
    if (!ok) return false;
  }
  return true;
}

}  // namespace

bool AddPropertyTemplate(FbxRecord& objectType, FbxTemplate kind) {
  struct Entry {
    const char* className;
    std::span<const Row> rows;
  };
  static constexpr Entry kTemplates[] = {
      {"FbxNode", kNodeRows}, {"FbxSkeleton", kSkeletonRows}, {"FbxMesh", kMeshRows}, {"FbxSurfacePhong", kPhongRows}};
  const Entry& entry = kTemplates[static_cast<u32>(kind)];
  FbxRecord* propertyTemplate = objectType.AddChild("PropertyTemplate", true);
  if (!propertyTemplate || !propertyTemplate->AddString(entry.className)) return false;
  FbxRecord* properties = propertyTemplate->AddChild("Properties70", true);
  return properties && AddRows(*properties, entry.rows);
}
