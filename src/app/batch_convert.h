#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "app/actor_list.h"
#include "app/convert_actor.h"

// One actor of a batch: its list entry and name, and the file it goes to, relative to the output
// folder (see OutputNames).
struct BatchActor {
  const PackEntry* entry = nullptr;
  std::string name;
  std::string output;
};

// How one actor of a batch ended. Skipped: a rig question the settings don't answer.
enum class BatchState { kNotStarted, kWritten, kFailed, kSkipped };

struct BatchActorResult {
  BatchState state = BatchState::kNotStarted;
  ConvertResult result = ConvertResult::kCancelled;
  std::string line;                // the failure's log line, or the reason for a skip
  std::vector<std::string> notes;  // what a written file had to leave out (textures)
};

// `actors` as a batch's, their outputs not yet named.
std::vector<BatchActor> BatchOf(const std::vector<ListedEntry>& actors);
// Names each actor's output after its name, with `extension` (".fbx", ".glb"), by OutputNames.
void NameOutputs(std::vector<BatchActor>& actors, const char* extension);

struct BatchSettings {
  std::string outDir;        // the folder the outputs go below; made as needed
  u32 jobs = 1;              // conversions at once
  std::string rig;           // the animation set that answers every rig question; empty: none does
  std::string rigHint = {};  // how to choose, in the front end's words: ends the reason of a skip
  ConvertOptions convert;
};

struct BatchSummary {
  u32 written = 0;
  u32 failed = 0;
  u32 skipped = 0;
  u32 notStarted = 0;  // left when the batch was stopped
};

// Counts one item that ended in `state`.
void Count(BatchSummary& summary, BatchState state);

// The order in which a batch takes its actors: round the output folders, one actor of each in
// turn. Actors of one folder lie together in the list, and the file system serialises the files
// made in one folder; so the jobs work in different folders at once.
std::vector<u32> FolderInterleavedOrder(const std::vector<BatchActor>& actors);

// The settings of a batch that writes below `outDir` in `format`, `jobs` at a time, with the
// textures when `textures` (each decoded once, through `store`), and answers no rig question.
BatchSettings BatchSettingsFor(const std::string& outDir, u32 jobs, ExportFormat format, bool textures,
                               TextureStore& store);

// Told of each actor as it ends, on the thread that converted it, one call at a time.
class IBatchObserver {
 public:
  virtual ~IBatchObserver() = default;
  virtual void ActorDone(const BatchActor& actor, const BatchActorResult& result, const BatchSummary& sofar) = 0;
};

// Converts every actor, `settings.jobs` at a time, over the game's tables, which are only read.
// Each conversion owns everything else it uses; one that fails leaves no file and the others go on.
// Once `stop` is set no further actor starts, and those under way end whole. `results` has one
// entry per actor, in the actors' order.
BatchSummary RunBatch(const GameTables& game, const std::vector<BatchActor>& actors, const BatchSettings& settings,
                      IBatchObserver* observer, const std::atomic<bool>& stop, std::vector<BatchActorResult>& results);
