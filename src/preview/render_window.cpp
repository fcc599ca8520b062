#include "preview/render_window.h"

#include <cmath>
#include <cstring>

#include "gamedata/actor_files.h"
#include "gamedata/material_textures.h"
#include "mesh/preview_mesh.h"

namespace {

constexpr f32 kVerticalFov = 1.0471976f;  // 60 degrees
constexpr f32 kNearPlane = 0.1f;
constexpr f32 kFarPlane = 50.0f;
constexpr f32 kBallRadius = 0.9f;
constexpr f32 kClearColour[4] = {0.75f, 0.75f, 0.75f, 1.0f};
constexpr const char* kNoSkeletonLine = "Skeleton: none, no rig fits this actor\r\n";

}  // namespace

CRenderWindow::CRenderWindow(IRenderHost& renderHost, i32 width, i32 height) : host(renderHost), camera(width, height) {
  (void)infoText.Reserve(16384);
}

CRenderWindow::~CRenderWindow() { Shutdown(); }

bool CRenderWindow::Init(PackIndex* packs) {
  Shutdown();
  i32 width = 0, height = 0;
  device = host.OpenDevice(width, height);
  if (!device) return false;
  packIndex = packs;
  worldMatrix = Matrix4{};
  modelOffset = Matrix4{};
  SetSize(width, height);
  textures.cache.SetDevice(device);
  textures.cache.ReleaseAll();
  textures.packIndex = packIndex;
  textures.device = device;
  // The first frame is the clear colour, before any actor is shown.
  host.RequestFrame();
  return true;
}

void CRenderWindow::SetSize(i32 width, i32 height) {
  viewWidth = width;
  viewHeight = height;
  aspect = f32(width) / f32(height);
  verticalFov = kVerticalFov;
  horizontalFov = 2.0f * std::atan(aspect * std::tan(0.5235987901687622f));
  projectionMatrix = MatrixPerspectiveFovRH(verticalFov, aspect, kNearPlane, kFarPlane);
  camera.SetWindow(width, height, kBallRadius);
}

void CRenderWindow::Resize(i32 width, i32 height) {
  if (!device || width <= 0 || height <= 0) return;
  SetSize(width, height);
  host.RequestFrame();
}

void CRenderWindow::Shutdown() {
  if (!device) return;
  // Graphics objects go before the device, with its context current.
  (void)host.MakeCurrent();
  ReleaseDrawList();
  ReleaseImage();
  textures.cache.ReleaseAll();
  textures.cache.SetDevice(nullptr);
  textures.device = nullptr;
  host.CloseDevice();
  device = nullptr;
}

void CRenderWindow::Tick() {
  if (!device) return;
  device->Clear(kClearColour, 1.0f);
  // An image is shown flat and alone: neither the camera nor the model's views apply to it.
  if (shownImage.texture) {
    device->DrawImage(shownImage.texture, FitImage(shownImage.width, shownImage.height, viewWidth, viewHeight));
    return;
  }
  camera.SetRotationMatrix(MatrixRotationQuaternion(camera.CurrentRotation()));
  worldMatrix = MatrixMultiply(camera.RotationMatrix(), camera.TranslationMatrix());
  // Centred first, then turned, then moved away from the eye.
  frameWorld = MatrixMultiply(modelOffset, worldMatrix);
  const Matrix4 identity;
  device->SetMatrices(frameWorld, identity, identity, projectionMatrix);
  // The views change nothing while they are off: the frame is the one without them.
  if (views.wireframe) device->SetWireframe(true);
  for (const DrawNode& node : drawList) {
    const Technique technique = node.texture ? Technique::kRenderTextured : Technique::kRender;
    (void)device->Draw(technique, node.mesh, node.indexCount, node.texture);
  }
  if (views.wireframe) device->SetWireframe(false);
  if (views.skeleton && skeleton.vertexArray) device->DrawSkeleton(skeleton);
}

void CRenderWindow::SetViews(const PreviewViews& wanted) {
  const bool skeletonChanged = wanted.skeleton != views.skeleton;
  views = wanted;
  if (skeletonChanged && modelShown) WriteSkeletonLine();
  host.RequestFrame();
}

void CRenderWindow::Reframe() {
  if (!modelShown) return;
  camera.FrameBounds(&shownBounds[0], &shownBounds[3], horizontalFov, verticalFov, modelOffset);
  host.RequestFrame();
}

void CRenderWindow::WriteSkeletonLine() {
  infoText.SetLength(infoLength);
  if (!views.skeleton) return;
  if (!skeleton.vertexArray) {
    infoText.AppendFormat("%s", kNoSkeletonLine);
  } else {
    infoText.AppendFormat("Skeleton: %s\r\n", skeletonName.Text());
  }
}

void CRenderWindow::LoadSkeleton(const ActorFiles& files, ISkeletonSource* skeletons) {
  const char* name = nullptr;
  const RigSkeleton* rig = skeletons ? skeletons->ShownRig(files.actor, files.model, name) : nullptr;
  BindSkeleton bind;
  if (!rig || !BuildBindSkeleton(bind, *rig) || !device->CreateSkeleton(bind, skeleton)) return;
  skeletonName.Assign(name ? name : "");
}

void CRenderWindow::HandleMouse(IMouseCapture& capture, u32 message, u32 buttons, i32 x, i32 y, bool captureToSelf) {
  if (camera.HandleMessage(capture, message, buttons, x, y, captureToSelf)) host.RequestFrame();
}

bool CRenderWindow::LoadActor(const PackEntry* entry, const char* name, const MaterialDefinitionSet* materials,
                              ISkeletonSource* skeletons) {
  host.RequestFrame();
  if (!device || !ClearShown()) return false;
  if (!materials || !packIndex || !name) return false;
  if (!PackIndex::FetchEntry(entry, actorBytes)) return false;
  ActorFiles files;
  if (ReadActorFiles(files, actorBytes, *packIndex, modelBytes, paletteBytes) != ActorFilesFailure::kNone) {
    return false;
  }
  const ModelMaterials& applied = files.Applied();
  infoText.Clear(false);
  infoText.AppendFormat("Info for %s\r\n\r\n", name);
  for (u32 i = 0; i < files.model.meshes.Count(); ++i) {
    infoText.AppendFormat("-- Textures for mesh %u\r\n", i);
    // A palette may hold fewer materials than the model has meshes; such a mesh can't be shown.
    if (i >= applied.materials.Count() || !BuildDrawNode(applied.materials[i], files.model.meshes[i], *materials)) {
      ReleaseDrawList();
      return false;
    }
  }
  LoadSkeleton(files, skeletons);
  infoLength = infoText.Length();
  std::memcpy(shownBounds, files.model.bounds, sizeof(ModelBounds));
  modelShown = true;
  WriteSkeletonLine();
  camera.FrameBounds(&shownBounds[0], &shownBounds[3], horizontalFov, verticalFov, modelOffset);
  return true;
}

bool CRenderWindow::ClearShown() {
  if (!host.MakeCurrent()) {
    // Without the context nothing can be freed or made; its objects went with it.
    (void)drawList.SetSize(0);
    skeleton = GpuSkeleton{};
    shownImage = ShownImage{};
    modelShown = false;
    return false;
  }
  // The old model or image goes before the new one is known to be good.
  ReleaseDrawList();
  ReleaseImage();
  return true;
}

void CRenderWindow::ShowText(const char* info) {
  host.RequestFrame();
  if (!device) return;
  (void)ClearShown();  // without the context nothing is shown all the same
  infoText.Clear(false);
  infoText.AppendFormat("%s", info ? info : "");
  infoLength = infoText.Length();
}

bool CRenderWindow::ShowImage(const DecodedImage& decoded, const char* info) {
  ShowText(info);
  if (!device || decoded.width == 0 || decoded.height == 0 || !host.MakeCurrent()) return false;
  shownImage.texture = device->CreateTexture(decoded);
  if (!shownImage.texture) return false;
  shownImage.width = decoded.width;
  shownImage.height = decoded.height;
  return true;
}

bool CRenderWindow::BuildDrawNode(const ModelMaterial& material, const ModelMesh& mesh,
                                  const MaterialDefinitionSet& materials) {
  const InputLayout* layout = materials.ChooseInputLayout(material.definitionHash);
  if (!layout) return false;
  PreviewMesh preview;
  if (!BuildPreview(preview, mesh, layout)) return false;
  // Stored indices are kept as they are; one past the vertices would have the GPU read outside
  // the vertex buffer, so such a mesh isn't drawn.
  for (u32 index : preview.indices) {
    if (index >= preview.vertexCount) return false;
  }
  DrawNode node;
  if (!device->CreateMesh(preview, node.mesh)) return false;
  node.indexCount = preview.indexCount;
  ForEachTextureName(material, [&](const char* texture) { infoText.AppendFormat("%s\r\n", texture); });
  if (const char* diffuse = DiffuseTextureName(material)) node.texture = GetTexture(diffuse);
  DrawNode* slot = drawList.Append();
  if (!slot) {
    device->ReleaseMesh(node.mesh);
    return false;
  }
  *slot = node;
  return true;
}

u32 CRenderWindow::GetTexture(const char* name) {
  if (!textures.packIndex || !textures.device || !name) return 0;
  TextureEntry* entry = textures.cache.FindOrAdd(name);
  if (!entry) return 0;
  if (entry->texture) return entry->texture;
  DecodedImage image;
  if (textures.packIndex->FetchByName(name, textures.imageBytes) &&
      DecodeImage(textures.imageBytes.Data(), textures.imageBytes.Size(), image)) {
    entry->texture = textures.device->CreateTexture(image);
  }
  if (!entry->texture) textures.cache.Remove(name);  // the slot is free again
  return entry->texture;
}

void CRenderWindow::ReleaseDrawList() {
  // The textures live for one load: shared between the meshes of a model, not between models.
  textures.cache.ReleaseAll();
  for (DrawNode& node : drawList) device->ReleaseMesh(node.mesh);
  (void)drawList.SetSize(0);
  device->ReleaseSkeleton(skeleton);
  skeletonName.Clear(false);
  modelShown = false;
}

void CRenderWindow::ReleaseImage() {
  if (shownImage.texture) device->ReleaseTexture(shownImage.texture);
  shownImage = ShownImage{};
}
