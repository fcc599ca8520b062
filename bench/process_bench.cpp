#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "assets/pack_index.h"
#include "bench_game.h"
#include "core/types.h"
#include "support/temp_dir.h"

namespace {

// Starts the command-line program for the benchmarks. A child made by fork or posix_spawn is
// charged its parent's peak memory when it execs, and this process holds the whole stress game;
// so the programs are started by a launcher forked before main, while this process is small.
class Launcher {
 public:
  Launcher() {
    if (pipe(requests) != 0 || pipe(replies) != 0) return;
    launcher = fork();
    if (launcher == 0) {
      close(requests[1]);
      close(replies[0]);
      Serve();
    }
    close(requests[0]);
    close(replies[1]);
  }
  ~Launcher() {
    close(requests[1]);  // the launcher ends when its requests end
    if (launcher > 0) waitpid(launcher, nullptr, 0);
  }

  // One run with its output thrown away: true when it exits with 0. `usage` gets the run's own
  // figures, its peak memory among them.
  bool Run(const std::vector<std::string>& arguments, rusage& usage) {
    std::string message;
    for (const std::string& argument : arguments) message.append(argument).push_back('\0');
    const u32 length = u32(message.size());
    Reply reply{};
    if (launcher <= 0 || !WriteAll(requests[1], &length, sizeof(length)) ||
        !WriteAll(requests[1], message.data(), length) || !ReadAll(replies[0], &reply, sizeof(reply))) {
      return false;
    }
    usage = reply.usage;
    return reply.ok;
  }

 private:
  struct Reply {
    bool ok;
    rusage usage;
  };

  static bool ReadAll(int fd, void* data, size_t size) {
    for (size_t done = 0; done < size;) {
      const ssize_t got = read(fd, static_cast<char*>(data) + done, size - done);
      if (got <= 0) return false;
      done += size_t(got);
    }
    return true;
  }
  static bool WriteAll(int fd, const void* data, size_t size) {
    for (size_t done = 0; done < size;) {
      const ssize_t put = write(fd, static_cast<const char*>(data) + done, size - done);
      if (put <= 0) return false;
      done += size_t(put);
    }
    return true;
  }

  [[noreturn]] void Serve() {
    u32 length = 0;
    while (ReadAll(requests[0], &length, sizeof(length))) {
      std::string message(length, '\0');
      if (!ReadAll(requests[0], message.data(), length)) break;
      std::vector<char*> argv = {const_cast<char*>(TARNWICK_CLI)};
      for (size_t at = 0; at < message.size(); at = message.find('\0', at) + 1) argv.push_back(&message[at]);
      argv.push_back(nullptr);
      Reply reply{};
      const pid_t child = fork();
      if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, 1);
        dup2(null, 2);
        execv(TARNWICK_CLI, argv.data());
        _exit(127);
      }
      int status = 0;
      reply.ok =
          child > 0 && wait4(child, &status, 0, &reply.usage) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
      if (!WriteAll(replies[1], &reply, sizeof(reply))) break;
    }
    _exit(0);
  }

  int requests[2] = {-1, -1};
  int replies[2] = {-1, -1};
  pid_t launcher = -1;
};

Launcher gLauncher;

// The whole `tarnwick-cli` process, start to exit, as a user times it: with the argument 0 the
// conversion of the stress game's largest actor (241,664 vertices, 128 bones) to .fbx, with 1
// the listing of its 20,021 actors. The peak memory is the largest of the runs.
void BM_CliProcess(benchmark::State& state) {
  testsupport::TempDir out;
  std::vector<std::string> arguments = {"--game-dir", BenchGameFolder()};
  if (state.range(0) == 0) {
    arguments.insert(arguments.end(), {"convert", "actors\\large\\giant_00.adr", "-o", out.Join("giant.fbx")});
  } else {
    arguments.push_back("list");
  }
  long peakKb = 0;
  long faults = 0;
  for (auto _ : state) {
    rusage usage{};
    if (!gLauncher.Run(arguments, usage)) {
      state.SkipWithError("tarnwick-cli failed");
      break;
    }
    peakKb = std::max(peakKb, usage.ru_maxrss);
    faults += usage.ru_minflt;
  }
  state.SetLabel(state.range(0) == 0 ? "convert" : "list");
  state.counters["peak_MB"] = double(peakKb) / 1024.0;
  state.counters["minor_faults"] = benchmark::Counter(double(faults), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_CliProcess)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// `extract '*'` of the whole stress game (200,000 files) on two jobs, the whole process into a
// fresh folder each time; its floor is BM_ExtractFloor.
void BM_CliExtract(benchmark::State& state) {
  long peakKb = 0;
  std::vector<std::unique_ptr<testsupport::TempDir>> outs;  // removed after the timing
  for (auto _ : state) {
    state.PauseTiming();
    outs.push_back(std::make_unique<testsupport::TempDir>());
    state.ResumeTiming();
    rusage usage{};
    if (!gLauncher.Run(
            {"--game-dir", BenchGameFolder(), "extract", "*", "--out-dir", outs.back()->Join("x"), "--jobs", "2"},
            usage)) {
      state.SkipWithError("tarnwick-cli failed");
      break;
    }
    peakKb = std::max(peakKb, usage.ru_maxrss);
  }
  state.counters["peak_MB"] = double(peakKb) / 1024.0;
}
BENCHMARK(BM_CliExtract)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

// The floor under BM_CliExtract: files of the same names and sizes written from memory into a
// fresh folder, each opened, written and closed once, with their folders made, on two threads.
void BM_ExtractFloor(benchmark::State& state) {
  PackIndex packs;
  if (!packs.Open((BenchGameFolder() + "/Resources/Assets").c_str())) state.SkipWithError("no game");
  std::vector<std::pair<std::string, u32>> files;
  u32 largest = 0;
  for (u32 i = 0; i < packs.EntryCount(); ++i) {
    std::string path = packs.NameAt(i);
    std::replace(path.begin(), path.end(), '\\', '/');
    files.emplace_back(path, packs.EntryAt(i)->size);
    largest = std::max(largest, packs.EntryAt(i)->size);
  }
  const std::vector<char> bytes(largest, 'x');
  std::vector<std::unique_ptr<testsupport::TempDir>> outs;  // removed after the timing
  for (auto _ : state) {
    state.PauseTiming();
    outs.push_back(std::make_unique<testsupport::TempDir>());
    const testsupport::TempDir& out = *outs.back();
    state.ResumeTiming();
    std::atomic<u32> next{0};
    auto writeFiles = [&] {
      for (u32 i; (i = next++) < files.size();) {
        const std::string path = out.Path() + "/" + files[i].first;
        int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (fd < 0) {
          std::error_code ignored;
          std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
          fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        }
        if (fd >= 0) {
          (void)!::write(fd, bytes.data(), files[i].second);
          close(fd);
        }
      }
    };
    std::thread other(writeFiles);
    writeFiles();
    other.join();
    const int folder = open(out.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    syncfs(folder);
    close(folder);
  }
}
BENCHMARK(BM_ExtractFloor)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

}  // namespace
