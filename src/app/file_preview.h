#pragma once

#include "app/app_state.h"
#include "core/byte_buffer.h"

// Shows a file of the packs that isn't an actor, for "All files": an image whole in the preview
// with its format, size and levels in the info panel; any other file by its name and size in
// bytes, the preview left clear. Main thread; nothing without a preview.
void ShowPackFile(AppState& app, const PackEntry* entry, const char* name);

// The info panel's text for file `name` of `size` bytes. With `image` (its bytes, for a name that
// IsImageName takes) the header's facts too, or a line saying that it reads as no image. True when
// the facts were read.
bool DescribePackFile(const char* name, u32 size, const CByteBuffer* image, CStringBufferA& text);
