#include "app/convert.h"

#include "app/file_list.h"
#include "app/log.h"

void Convert(AppState& app, ISaveDialog& save, IRigDialog& rigDialog, const ConvertOptions& options) {
  const PackEntry* entry = SelectedEntry(app);
  if (!entry) return;
  TStringBufferA<260> actorName;
  if (!GetSelectedName(app, actorName)) return;
  ConvertOutcome outcome;
  ConvertActor(GameTables{app.packIndex, app.materials, app.rigs}, *entry, actorName.Text(), {save, rigDialog}, outcome,
               options);
  LogOutcome(app, outcome);
}

void LogOutcome(AppState& app, const ConvertOutcome& outcome) {
  for (const std::string& note : outcome.notes) Log(app, "%s", note.c_str());
  if (!outcome.reason.empty()) Log(app, "%s", outcome.reason.c_str());
  if (outcome.logLine.Length()) Log(app, "%s", outcome.logLine.Text());
}
