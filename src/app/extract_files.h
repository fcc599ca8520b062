#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "app/actor_list.h"
#include "app/batch_convert.h"

// The files of the packs in the file list's order (names compared without regard to case, a
// name's first place in the packs breaking ties), each name once with the copy the index serves.
// With `pattern`, only the names it matches whole.
std::vector<ListedEntry> PackFiles(const PackIndex& packs, const char* pattern = nullptr);

// Whether `name` is an image that the preview decodes, by its extension (DDS, PNG, JPEG, TGA, BMP).
bool IsImageName(const std::string& name);

// Files taken out of the packs as they are stored, or images as PNG files.
struct ExtractSettings {
  std::string outDir;        // the folder the files go below; made as needed
  u32 jobs = 1;              // files at once
  bool imagesAsPng = false;  // every image the preview decodes as a PNG of its first level
};

// The batch of `files`: each one's output is where it goes below the folder (see ExtractPaths;
// empty for a name that leaves nothing), and `asPng` whether it is written as PNG.
std::vector<BatchActor> ExtractBatch(const std::vector<ListedEntry>& files, const ExtractSettings& settings,
                                     std::vector<bool>& asPng);

// Writes each file below `settings.outDir`, `settings.jobs` at a time, reading each once and holding
// only those under way; the packs are only read. A file whose name leaves nothing to write is
// skipped; an image that can't be decoded is written as stored, with a note. Once `stop` is set no
// further file starts. `results` has one entry per file, in the files' order.
BatchSummary RunExtract(const std::vector<BatchActor>& files, const std::vector<bool>& asPng,
                        const ExtractSettings& settings, IBatchObserver* observer, const std::atomic<bool>& stop,
                        std::vector<BatchActorResult>& results);
