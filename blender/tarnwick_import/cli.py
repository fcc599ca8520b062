"""tarnwick-cli as the add-on runs it: where it is, the games and actors it finds, one batch conversion.

Nothing here touches Blender, so a failure is a CliError with the line to show, never a traceback.
"""
import os
import re
import shutil
import subprocess

CLI_NAME = "tarnwick-cli"
# Tests and odd setups point the add-on at a particular build without touching the preferences.
CLI_ENVIRONMENT = "TARNWICK_CLI"


class CliError(Exception):
    """A run that gave nothing to use: `message` is the line to report, `details` the log before it."""

    def __init__(self, message, details=()):
        super().__init__(message)
        self.message = message
        self.details = list(details)


def find_cli(configured=""):
    """The program to run: $TARNWICK_CLI, else the path from the preferences, else the one on PATH."""
    for origin, path in (("$" + CLI_ENVIRONMENT, os.environ.get(CLI_ENVIRONMENT, "")),
                         ("the add-on's preferences", configured)):
        if not path:
            continue
        if os.path.isfile(path) and os.access(path, os.X_OK):
            return path
        raise CliError(f"{CLI_NAME} not found at {path} (set in {origin})")
    found = shutil.which(CLI_NAME)
    if not found:
        raise CliError(f"{CLI_NAME} not found on PATH: install Tarnwick, or set the program's path "
                       "in the preferences of the Tarnwick import add-on")
    return found


def source_arguments(data_dir="", prefixes=(), game_dir="", game=""):
    """The options that say where the games are and which one to open, as every command takes them."""
    arguments = []
    if data_dir:
        arguments += ["--data-dir", data_dir]
    for prefix in prefixes:
        arguments += ["--prefix", prefix]
    if game_dir:
        arguments += ["--game-dir", game_dir]
    if game:
        arguments += ["--game", game]
    return arguments


def split_list(text):
    """`a; b;;c` as ["a", "b", "c"]: the add-on's way to hold several names in one text field."""
    return [part.strip() for part in text.split(";") if part.strip()]


def _lines(text):
    return [line for line in text.splitlines() if line.strip()]


def _run(cli, arguments):
    try:
        done = subprocess.run([cli] + arguments, stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, errors="replace")
    except OSError as error:
        raise CliError(f"can't run {cli}: {error.strerror}") from None
    if done.returncode != 0:
        log = _lines(done.stderr)
        raise CliError(log[-1] if log else f"{CLI_NAME} ended with status {done.returncode}", log[:-1])
    return _lines(done.stdout)


def games(cli, source):
    """The games found, as (name, installation folder) pairs in the CLI's order."""
    return [tuple(line.split("\t", 1)) if "\t" in line else (line, "") for line in _run(cli, ["games"] + source)]


def actors(cli, source, pattern=""):
    """The chosen game's actor names; `pattern` filters as the search box does (anywhere in the name)."""
    return _run(cli, source + ["list"] + ([pattern] if pattern else []))


def name_as_pattern(name):
    """A pattern that matches the actor `name`. `#` stands for a digit in a pattern, so a name that
    holds one matches through `?`; the caller keeps only the names it asked for."""
    return name.replace("#", "?")


class ActorResult:
    """One actor of a batch: `state` is the CLI's word (written, failed, skipped, not started),
    `output` the written file relative to the output folder, `line` the reason given, `notes`
    what a written file had to leave out."""

    def __init__(self, name, state, output="", line=""):
        self.name = name
        self.state = state
        self.output = output
        self.line = line
        self.notes = []


class BatchRun:
    """A finished `convert --out-dir`: exit status, the actors in the order they ended, the log."""

    def __init__(self, status, results, log):
        self.status = status
        self.results = results
        self.log = log

    def last_line(self):
        return self.log[-1] if self.log else f"{CLI_NAME} ended with status {self.status}"


# "[3/10] written actors\knight.adr -> actors/knight.glb", "[1/3] skipped NAME: reason"; a written
# file's line may also carry a reason. Notes follow indented by two spaces.
_ACTOR_LINE = re.compile(r"^\[(\d+)/(\d+)\] (written|failed|skipped|not started) (.*)$")
_WRITTEN = re.compile(r"^(.*?) -> (.+?\.(?:glb|fbx))(?:: (.*))?$")


def parse_actor_line(line):
    """An ActorResult with its done and total counts, or None for any other line."""
    match = _ACTOR_LINE.match(line)
    if not match:
        return None
    done, total, state, rest = int(match[1]), int(match[2]), match[3], match[4]
    written = _WRITTEN.match(rest) if state == "written" else None
    if written:
        result = ActorResult(written[1], state, written[2], written[3] or "")
    else:
        name, _, reason = rest.partition(": ")
        result = ActorResult(name, state, "", reason)
    return result, done, total


def convert(cli, source, patterns, out_dir, file_format, textures, rig, jobs, log_path, progress=None):
    """One `convert PATTERN... --out-dir` run; `progress(done, total)` is called as actors end.
    The log goes through a file so a long one can't stall the run on a full pipe."""
    arguments = source + ["convert"] + list(patterns) + ["--out-dir", out_dir, "--format", file_format.lower(),
                                                         "--jobs", str(jobs)]
    if textures:
        arguments.append("--textures")
    if rig:
        arguments += ["--rig", rig]
    results = []
    summary = False
    try:
        with open(log_path, "w+", encoding="utf-8", errors="replace") as log:
            with subprocess.Popen([cli] + arguments, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=log, text=True, errors="replace") as process:
                for line in process.stdout:
                    line = line.rstrip("\n")
                    parsed = parse_actor_line(line)
                    if parsed:
                        results.append(parsed[0])
                        if progress:
                            progress(parsed[1], parsed[2])
                    elif line.startswith("  ") and results and not summary:
                        results[-1].notes.append(line.strip())
                    else:
                        # The summary repeats, by name, what the actor lines said.
                        summary = True
            log.seek(0)
            log_lines = _lines(log.read())
    except OSError as error:
        raise CliError(f"can't run {cli}: {error.strerror}") from None
    return BatchRun(process.returncode, results, log_lines)
