#include "app/batch_convert.h"

#include <mutex>
#include <unordered_map>

#include "app/output_names.h"
#include "app/rig_by_name.h"
#include "platform/folders.h"
#include "platform/parallel_for.h"

namespace {

// Answers the rig question by the set the settings name; otherwise the conversion stops with the
// choices noted, so nothing is written without the rig the user meant.
class BatchQuestions final : public ISaveDialog {
 public:
  BatchQuestions(const BatchSettings& batch, const BatchActor& one) : rig(batch.rig), settings(batch), actor(one) {}

  bool AskSavePath(CStringBufferA& out) override {
    const std::string path = settings.outDir + "/" + actor.output;
    const size_t folder = path.rfind('/');
    // The folder is made only for an actor that got this far: a failed read leaves none behind.
    if (folder != std::string::npos && folder > 0 && !MakeFolders(path.substr(0, folder).c_str())) {
      folderFailed = true;
      return false;
    }
    return out.Format("%s", path.c_str()) > 0;
  }

  RigByName rig;
  const BatchSettings& settings;
  const BatchActor& actor;
  bool folderFailed = false;
};

}  // namespace

void Count(BatchSummary& summary, BatchState state) {
  switch (state) {
    case BatchState::kWritten: ++summary.written; break;
    case BatchState::kFailed: ++summary.failed; break;
    case BatchState::kSkipped: ++summary.skipped; break;
    case BatchState::kNotStarted: ++summary.notStarted; break;
  }
}

std::vector<BatchActor> BatchOf(const std::vector<ListedEntry>& actors) {
  std::vector<BatchActor> batch;
  batch.reserve(actors.size());
  for (const ListedEntry& actor : actors) batch.push_back({actor.entry, actor.name, {}});
  return batch;
}

void NameOutputs(std::vector<BatchActor>& actors, const char* extension) {
  std::vector<std::string> names;
  names.reserve(actors.size());
  for (const BatchActor& actor : actors) names.push_back(actor.name);
  const std::vector<std::string> outputs = OutputNames(names, extension);
  for (size_t i = 0; i < actors.size(); ++i) actors[i].output = outputs[i];
}

std::vector<u32> FolderInterleavedOrder(const std::vector<BatchActor>& actors) {
  std::vector<std::vector<u32>> folders;
  std::unordered_map<std::string, size_t> folderIndex;
  for (u32 i = 0; i < actors.size(); ++i) {
    const std::string& output = actors[i].output;
    const size_t slash = output.rfind('/');
    const std::string folder = slash == std::string::npos ? std::string() : output.substr(0, slash);
    const auto [at, added] = folderIndex.try_emplace(folder, folders.size());
    if (added) folders.emplace_back();
    folders[at->second].push_back(i);
  }
  std::vector<u32> order;
  order.reserve(actors.size());
  for (size_t round = 0; order.size() < actors.size(); ++round) {
    for (const std::vector<u32>& folder : folders) {
      if (round < folder.size()) order.push_back(folder[round]);
    }
  }
  return order;
}

BatchSettings BatchSettingsFor(const std::string& outDir, u32 jobs, ExportFormat format, bool textures,
                               TextureStore& store) {
  BatchSettings settings;
  settings.outDir = outDir;
  settings.jobs = jobs;
  settings.convert.batch = true;
  settings.convert.textures = textures;
  settings.convert.textureStore = &store;
  settings.convert.format = format;
  return settings;
}

BatchSummary RunBatch(const GameTables& game, const std::vector<BatchActor>& actors, const BatchSettings& settings,
                      IBatchObserver* observer, const std::atomic<bool>& stop, std::vector<BatchActorResult>& results) {
  results.assign(actors.size(), BatchActorResult{});
  BatchSummary sofar;
  std::mutex report;
  const std::vector<u32> order = FolderInterleavedOrder(actors);
  auto convert = [&](u32, u32 item) {
    if (stop.load(std::memory_order_relaxed)) return;
    const u32 index = order[item];
    const BatchActor& actor = actors[index];
    BatchActorResult& result = results[index];
    BatchQuestions questions(settings, actor);
    ConvertOutcome outcome;
    ConvertActor(game, *actor.entry, actor.name.c_str(), {questions, questions.rig}, outcome, settings.convert);
    result.result = outcome.result;
    result.notes = std::move(outcome.notes);
    if (outcome.Written()) {
      result.state = BatchState::kWritten;
    } else if (questions.rig.StopsConversion()) {
      result.state = BatchState::kSkipped;
      result.line = "several rigs fit (" + questions.rig.ChoiceList() + ")";
      if (!settings.rigHint.empty()) result.line += "; " + settings.rigHint;
    } else {
      result.state = BatchState::kFailed;
      result.line = questions.folderFailed ? "Failed to make the folder of \"" + actor.output + "\"."
                                           : std::string(outcome.logLine.Text());
      // A failed write's line says which file; its reason, what failed.
      if (!outcome.reason.empty()) result.line += " " + outcome.reason;
    }
    const std::lock_guard lock(report);
    Count(sofar, result.state);
    if (observer) observer->ActorDone(actor, result, sofar);
  };
  ParallelFor(u32(actors.size()), settings.jobs, convert);
  // The files were not flushed one by one; one flush puts them all on disk before the batch ends.
  if (settings.convert.batch) (void)SyncFileSystem(settings.outDir.c_str());
  BatchSummary summary;
  for (const BatchActorResult& result : results) Count(summary, result.state);
  return summary;
}
