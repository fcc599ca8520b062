#include "platform/debug_channel.h"

#include <cstdarg>
#include <cstdio>

#include "core/string_buffer.h"

void DebugPrintA([[maybe_unused]] const char* format, ...) {
#ifndef NDEBUG
  TStringBufferA<256> line;
  va_list args;
  va_start(args, format);
  line.FormatV(format, args);
  va_end(args);
  std::fputs(line.Text(), stderr);
#endif
}
