#include "app/log.h"

#include <cstdarg>

void Log(AppState& app, const char* format, ...) {
  app.logLock.Lock();
  va_list args;
  va_start(args, format);
  app.lineBuffer.FormatV(format, args);
  va_end(args);
  if (app.window) {
    app.window->InsertString(kLogList, -1, app.lineBuffer.Text());
    app.window->SetTopIndex(kLogList, app.window->GetCount(kLogList) - 1);
  }
  app.logLock.Unlock();
}
