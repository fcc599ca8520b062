#include "app/extract_files.h"

#include <strings.h>

#include <algorithm>
#include <mutex>

#include "app/extract_paths.h"
#include "assets/wildcard_match.h"
#include "core/byte_buffer.h"
#include "image/texture_png.h"
#include "platform/folders.h"
#include "platform/output_tree.h"
#include "platform/parallel_for.h"

namespace {

constexpr const char* kImageExtensions[] = {".dds", ".png", ".jpg", ".jpeg", ".tga", ".bmp"};

// One file: its bytes, as PNG where asked and the image decodes, below the tree.
void ExtractOne(const BatchActor& file, bool asPng, const OutputTree& tree, BatchActorResult& result) {
  if (file.output.empty()) {
    result.state = BatchState::kSkipped;
    result.line = "its name leaves nothing to write";
    return;
  }
  CByteBuffer bytes;
  if (!PackIndex::FetchEntry(file.entry, bytes)) {
    result.state = BatchState::kFailed;
    result.line = "Error reading \"" + file.name + "\".";
    return;
  }
  TexturePng png;
  const void* data = bytes.Data();
  u64 size = bytes.Size();
  std::string path = file.output;
  if (asPng) {
    if (MakeTexturePng(bytes.Data(), bytes.Size(), AlphaForm::kAsStored, png)) {
      data = png.png.data();
      size = png.png.size();
    } else {
      // The raw file keeps its own extension, beside where the PNG would have gone.
      const size_t slash = file.name.find_last_of("/\\");
      const size_t dot = file.name.rfind('.');
      const std::string extension = dot != std::string::npos && (slash == std::string::npos || dot > slash)
                                        ? file.name.substr(dot)
                                        : std::string();
      path = path.substr(0, path.size() - 4) + extension;
      result.notes.push_back("can't be decoded; written as it is stored");
    }
  }
  std::string error;
  switch (tree.Write(path, data, size, error)) {
    case TreeWrite::kWritten: result.state = BatchState::kWritten; return;
    case TreeWrite::kLinkInTheWay:
      result.state = BatchState::kSkipped;
      result.line = "a link or a file stands where a folder of \"" + file.output + "\" goes";
      return;
    case TreeWrite::kFailed:
      result.state = BatchState::kFailed;
      result.line = "Failed to write \"" + file.output + "\": " + error;
      return;
  }
}

}  // namespace

std::vector<ListedEntry> PackFiles(const PackIndex& packs, const char* pattern) {
  std::vector<ListedEntry> files;
  packs.Walk([&](const char* name, const PackEntry* entry) {
    if (!pattern || WildcardMatch(name, pattern)) files.push_back({name, entry});
    return true;
  });
  // Stable: names equal but for case keep the packs' order, as the list puts them.
  std::stable_sort(files.begin(), files.end(), [](const ListedEntry& a, const ListedEntry& b) {
    return strcasecmp(a.name.c_str(), b.name.c_str()) < 0;
  });
  return files;
}

bool IsImageName(const std::string& name) {
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) return false;
  const std::string extension = name.substr(dot);
  return std::any_of(std::begin(kImageExtensions), std::end(kImageExtensions),
                     [&](const char* image) { return strcasecmp(extension.c_str(), image) == 0; });
}

std::vector<BatchActor> ExtractBatch(const std::vector<ListedEntry>& files, const ExtractSettings& settings,
                                     std::vector<bool>& asPng) {
  asPng.assign(files.size(), false);
  for (size_t i = 0; i < files.size(); ++i) asPng[i] = settings.imagesAsPng && IsImageName(files[i].name);
  std::vector<std::string> paths = ExtractPaths(files, asPng);
  std::vector<BatchActor> batch(files.size());
  for (size_t i = 0; i < files.size(); ++i) batch[i] = {files[i].entry, files[i].name, std::move(paths[i])};
  return batch;
}

BatchSummary RunExtract(const std::vector<BatchActor>& files, const std::vector<bool>& asPng,
                        const ExtractSettings& settings, IBatchObserver* observer, const std::atomic<bool>& stop,
                        std::vector<BatchActorResult>& results) {
  results.assign(files.size(), BatchActorResult{});
  BatchSummary sofar;
  OutputTree tree;
  std::string error;
  const bool open = tree.Open(settings.outDir, error);
  std::mutex report;
  const std::vector<u32> order = FolderInterleavedOrder(files);
  auto extract = [&](u32, u32 item) {
    if (stop.load(std::memory_order_relaxed)) return;
    const u32 index = order[item];
    BatchActorResult& result = results[index];
    if (open) {
      ExtractOne(files[index], asPng[index], tree, result);
    } else {
      result.state = BatchState::kFailed;
      result.line = "Failed to write below \"" + settings.outDir + "\": " + error;
    }
    const std::lock_guard lock(report);
    Count(sofar, result.state);
    if (observer) observer->ActorDone(files[index], result, sofar);
  };
  ParallelFor(u32(files.size()), settings.jobs, extract);
  // The files were not flushed one by one; one flush puts them all on disk before the run ends.
  if (open) (void)SyncFileSystem(settings.outDir.c_str());
  BatchSummary summary;
  for (const BatchActorResult& result : results) Count(summary, result.state);
  return summary;
}
