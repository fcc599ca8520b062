#include "app/file_preview.h"

#include "app/extract_files.h"
#include "image/image_decode.h"
#include "image/image_info.h"
#include "preview/render_window.h"

bool DescribePackFile(const char* name, u32 size, const CByteBuffer* image, CStringBufferA& text) {
  // Lines end as the actors' texts end; the panel shows either alike.
  text.Clear(false);
  text.AppendFormat("Info for %s\r\n\r\n", name);
  ImageInfo info;
  const bool facts = image && ReadImageInfo(image->Data(), image->Size(), info);
  if (facts) {
    text.AppendFormat("Format: %s%s%s\r\n", ImageFormatName(info.format), info.pixelFormat[0] ? ", " : "",
                      info.pixelFormat);
    text.AppendFormat("Size: %u x %u\r\nLevels: %u\r\n", info.width, info.height, info.levels);
  } else if (image) {
    text.AppendFormat("Not an image that can be read\r\n");
  }
  text.AppendFormat("File size: %u bytes\r\n", size);
  return facts;
}

void ShowPackFile(AppState& app, const PackEntry* entry, const char* name) {
  if (!app.renderWindow || !entry || !name) return;
  TStringBufferA<512> text;
  CByteBuffer bytes;
  const bool image = IsImageName(name) && PackIndex::FetchEntry(entry, bytes);
  const bool facts = DescribePackFile(name, entry->size, image ? &bytes : nullptr, text);
  DecodedImage decoded;
  if (facts && DecodeImage(bytes.Data(), bytes.Size(), decoded)) {
    (void)app.renderWindow->ShowImage(decoded, text.Text());
  } else {
    if (facts) text.AppendFormat("The preview can't decode it\r\n");
    app.renderWindow->ShowText(text.Text());
  }
  app.window->SetText(kInfoText, app.renderWindow->GetInfoText());
}
