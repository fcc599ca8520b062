#include "app/convert.h"

#include "app/file_list.h"
#include "app/log.h"

void Convert(AppState& app, ISaveDialog& save, IRigDialog& rigDialog) {
  const PackEntry* entry = SelectedEntry(app);
  if (!entry) return;
  TStringBufferA<260> actorName;
  if (!GetSelectedName(app, actorName)) return;
  ConvertOutcome outcome;
  ConvertActor(GameTables{app.packIndex, app.materials, app.rigs}, *entry, actorName.Text(), {save, rigDialog}, outcome);
  if (outcome.logLine.Length()) Log(app, "%s", outcome.logLine.Text());
}
