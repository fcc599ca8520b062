#include "fbx/convert_state.h"

#include <cstdio>

#include "fbx/convert_mesh.h"
#include "fbx/sdk/fbx_exporter.h"
#include "fbx/setup_rig.h"

namespace {

constexpr const char* kSceneName = "Tarnwick";
constexpr f64 kCentimetresPerMetre = 100.0;

// Writer options, in the order they are set.
constexpr struct {
  const char* name;
  bool value;
} kExportOptions[] = {
    {"Export|AdvOptGrp|Fbx|Material", true},
    {"Export|AdvOptGrp|Fbx|Texture", true},
    {"Export|AdvOptGrp|Fbx|EMBEDDED", false},
    {"Export|AdvOptGrp|Fbx|Shape", true},
    {"Export|AdvOptGrp|Fbx|Gobo", true},
    {"Export|AdvOptGrp|Fbx|Animation", true},
    {"Export|AdvOptGrp|Fbx|Global_Settings", true},
};

bool FillDocumentInfo(FbxDocumentInfo& info) {
  return info.mTitle.Assign("Tarnwick export") && info.mSubject.Assign("Model exported by Tarnwick") &&
         info.mAuthor.Assign("Tarnwick.exe") && info.mRevision.Assign("1.0") && info.mKeywords.Assign("") &&
         info.mComment.Assign("");
}

}  // namespace

bool Setup(ConvertState& state) {
  state.fbxManager.reset(FbxManager::Create());
  FbxManager* manager = state.fbxManager.get();
  if (!manager) return false;
  state.fbxScene = FbxScene::Create(manager, kSceneName);
  if (!state.fbxScene) return false;
  FbxIOSettings* settings = FbxIOSettings::Create(manager, "IOSRoot");
  if (!settings) return false;
  manager->SetIOSettings(settings);
  FbxDocumentInfo* info = FbxDocumentInfo::Create(manager, "SceneInfo");
  if (!info || !FillDocumentInfo(*info)) return false;
  state.fbxScene->SetDocumentInfo(info);
  const FbxSystemUnit metre(kCentimetresPerMetre, 1.0);
  state.fbxScene->GetGlobalSettings().SetSystemUnit(metre);
  state.fbxScene->GetGlobalSettings().SetOriginalSystemUnit(metre);
  return true;
}

SceneBuildResult BuildFbxScene(ConvertState& state, ExportScene& scene) {
  if (!SetupRig(state, scene)) return SceneBuildResult::kRigFailed;
  for (u32 i = 0; i < scene.meshes.Count(); ++i) {
    if (!ConvertMesh(state, scene, i)) return SceneBuildResult::kMeshFailed;
    scene.meshes[i].geometry = {};
  }
  return SceneBuildResult::kBuilt;
}

bool WriteScene(FbxManager* manager, FbxScene* scene, const char* path, bool batch, std::string* reason) {
  FbxExporter* exporter = FbxExporter::Create(manager, "");
  if (!exporter) {
    if (reason) *reason = "Out of memory";
    return false;
  }
  const int format = manager->GetIOPluginRegistry()->GetNativeWriterFormat();
  FbxIOSettings* settings = manager->GetIOSettings();
  if (settings) {
    for (const auto& option : kExportOptions) settings->SetBoolProp(option.name, option.value);
  }
  if (!exporter->Initialize(path, format, settings)) {
    if (reason) *reason = exporter->GetStatus().GetErrorString();
    if (batch) return false;
    std::printf("Call to FbxExporter::Initialize() failed.\n");
    std::printf("Error returned: %s\n\n", exporter->GetStatus().GetErrorString());
    std::fflush(stdout);
    return false;
  }
  (void)exporter->SetFileExportVersion("FBX201200", FbxSceneRenamer::eNone);
  int major = 0, minor = 0, revision = 0;
  FbxManager::GetFileFormatVersion(major, minor, revision);
  exporter->SetFlushOnExport(!batch);
  if (!batch) {
    std::printf("FBX file format version %d.%d.%d\n\n", major, minor, revision);
    std::fflush(stdout);
  }
  const bool exported = exporter->Export(scene, false);
  if (!exported && reason) *reason = exporter->GetStatus().GetErrorString();
  exporter->Destroy();
  return exported;
}
