#pragma once

#include <chrono>
#include <cstdio>

#include "app/batch_convert.h"

// What a batch shows while it runs: on a terminal one line, redrawn in place, with the count done,
// the failures, the time taken and an estimate of the time left; elsewhere one line per actor.
// `doneWord` says what was done to one: "converted", "extracted".
class BatchProgress final : public IBatchObserver {
 public:
  BatchProgress(std::FILE* stream, bool terminal, u32 total, const char* doneWord = "converted");
  void ActorDone(const BatchActor& actor, const BatchActorResult& result, const BatchSummary& sofar) override;
  // Ends the redrawn line, so that what follows starts on a fresh one.
  void Finish();
  double ElapsedSeconds() const;

 private:
  std::FILE* stream;
  bool terminal;
  u32 total;
  const char* doneWord;
  std::chrono::steady_clock::time_point start;
  std::chrono::steady_clock::time_point lastDrawn{};
  bool drawn = false;
};

// The summary after a batch: counts, then each failure and skip with its actor and its one line.
// `what` names the work and its items: {"Converted", "actors"}, {"Extracted", "files"}.
struct BatchWords {
  const char* done = "Converted";
  const char* items = "actors";
};
void PrintBatchSummary(std::FILE* stream, const std::vector<BatchActor>& actors,
                       const std::vector<BatchActorResult>& results, const BatchSummary& summary, double seconds,
                       bool stopped, const BatchWords& what = {});
