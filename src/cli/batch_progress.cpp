#include "cli/batch_progress.h"

#include <string>

namespace {

// A terminal is redrawn at most this often; a batch of small actors ends thousands a second.
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

std::string Clock(double seconds) {
  const long whole = long(seconds + 0.5);
  char text[32];
  std::snprintf(text, sizeof(text), "%ld:%02ld", whole / 60, whole % 60);
  return text;
}

// A log line without the line end that some carry.
std::string OneLine(const std::string& line) {
  std::string text = line;
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text;
}

const char* StateWord(BatchState state) {
  switch (state) {
    case BatchState::kWritten: return "written";
    case BatchState::kFailed: return "failed";
    case BatchState::kSkipped: return "skipped";
    case BatchState::kNotStarted: break;
  }
  return "not started";
}

}  // namespace

BatchProgress::BatchProgress(std::FILE* out, bool isTerminal, u32 count, const char* done)
    : stream(out), terminal(isTerminal), total(count), doneWord(done), start(std::chrono::steady_clock::now()) {}

double BatchProgress::ElapsedSeconds() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BatchProgress::ActorDone(const BatchActor& actor, const BatchActorResult& result, const BatchSummary& sofar) {
  const u32 done = sofar.written + sofar.failed + sofar.skipped;
  if (!terminal) {
    std::fprintf(stream, "[%u/%u] %s %s", done, total, StateWord(result.state), actor.name.c_str());
    if (result.state == BatchState::kWritten) std::fprintf(stream, " -> %s", actor.output.c_str());
    if (!result.line.empty()) std::fprintf(stream, ": %s", OneLine(result.line).c_str());
    std::fputc('\n', stream);
    for (const std::string& note : result.notes) std::fprintf(stream, "  %s\n", note.c_str());
    return;
  }
  const auto now = std::chrono::steady_clock::now();
  if (drawn && done < total && now - lastDrawn < kRedrawInterval) return;
  lastDrawn = now;
  drawn = true;
  const double elapsed = ElapsedSeconds();
  const double left = done ? elapsed / done * (total - done) : 0;
  std::fprintf(stream, "\r\033[K%u/%u %s, %u failed, %u skipped, %s elapsed, %s left", done, total, doneWord,
               sofar.failed, sofar.skipped, Clock(elapsed).c_str(), Clock(left).c_str());
  std::fflush(stream);
}

void BatchProgress::Finish() {
  if (terminal && drawn) std::fputc('\n', stream);
}

void PrintBatchSummary(std::FILE* stream, const std::vector<BatchActor>& actors,
                       const std::vector<BatchActorResult>& results, const BatchSummary& summary, double seconds,
                       bool stopped, const BatchWords& what) {
  std::fprintf(stream, "%s %zu %s in %.1f s: %u written, %u failed, %u skipped", stopped ? "Stopped;" : what.done,
               actors.size(), what.items, seconds, summary.written, summary.failed, summary.skipped);
  if (summary.notStarted) std::fprintf(stream, ", %u not started", summary.notStarted);
  std::fputs(".\n", stream);
  for (const BatchState state : {BatchState::kFailed, BatchState::kSkipped}) {
    bool heading = false;
    for (size_t i = 0; i < actors.size(); ++i) {
      if (results[i].state != state) continue;
      if (!heading) std::fprintf(stream, "%s:\n", state == BatchState::kFailed ? "Failed" : "Skipped");
      heading = true;
      std::fprintf(stream, "  %s: %s\n", actors[i].name.c_str(), OneLine(results[i].line).c_str());
    }
  }
  bool heading = false;
  for (size_t i = 0; i < actors.size(); ++i) {
    for (const std::string& note : results[i].notes) {
      if (!heading) std::fputs("Left out:\n", stream);
      heading = true;
      std::fprintf(stream, "  %s: %s\n", actors[i].name.c_str(), note.c_str());
    }
  }
}
