#pragma once

#include "core/string_buffer.h"
#include "gamedata/rig_network.h"

// One rig that fits the model being converted, offered to the user. `name` is that of the first
// animation set that drives the rig, or null.
struct RigCandidate {
  RigCandidate* next = nullptr;
  const char* name = nullptr;
  const RigSkeleton* rig = nullptr;
};

// The questions a conversion asks its user. The window answers them with dialogs, the command line
// with its options, tests with fixed answers.

// Where to write the file.
class ISaveDialog {
 public:
  virtual ~ISaveDialog() = default;
  // Fills `path` and gives true, or gives false when the user cancels.
  virtual bool AskSavePath(CStringBufferA& path) = 0;
};

// The rig select dialog: the candidates' names sorted in a list, OK and Cancel.
class IRigDialog {
 public:
  virtual ~IRigDialog() = default;
  // Shows the candidates of the list that starts at `candidates` and gives 1 with the chosen
  // candidate's rig in `selected` when the user presses OK on a selection, or 0 on Cancel.
  virtual i32 Run(const RigCandidate* candidates, const RigSkeleton*& selected) = 0;
  // After Run: the conversion ends here, before anything is decoded, with nothing logged. A
  // dialog's Cancel only means no rig.
  virtual bool StopsConversion() const { return false; }
};

enum class ExportFormat : u8;

// The folder that a conversion of several actors writes below, or a game folder to open.
class IFolderDialog {
 public:
  virtual ~IFolderDialog() = default;
  // Fills `path` and gives true, or gives false when the user cancels.
  virtual bool AskFolder(CStringBufferA& path) = 0;
  // The same for the files of a conversion, with the format they are written in; FBX where the
  // dialog offers no choice.
  virtual bool AskOutputFolder(CStringBufferA& path, ExportFormat& /*format*/) { return AskFolder(path); }
};
