#include "fbx/sdk/fbx_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fbx/sdk/fbx_binary_writer.h"
#include "fbx/sdk/fbx_file_id.h"
#include "support/fbx_reader.h"

namespace {

using testsupport::FbxReadRecord;

std::string WriteEmptyScene(const FbxCreationTime& time) {
  FbxRecord document;
  FbxDocumentInfo info;
  EXPECT_TRUE(info.mTitle.Assign("Tarnwick export") && info.mSubject.Assign("Model exported by Tarnwick") &&
              info.mAuthor.Assign("Tarnwick.exe") && info.mRevision.Assign("1.0"));
  EXPECT_TRUE(BuildDocumentSections(document, time, &info, "Tarnwick", 100.0, 100.0));
  char text[24];
  FormatCreationTime(time, text);
  CByteBuffer out;
  EXPECT_TRUE(WriteFbxBinary(document, text, out));
  return std::string(reinterpret_cast<const char*>(out.Data()), out.Size());
}

// The value of the Properties70 row `name`, which holds one D.
double RowValue(const FbxReadRecord& properties, const std::string& name) {
  for (const FbxReadRecord& row : properties.children) {
    if (row.properties[0].bytes == name) return row.properties.at(4).real;
  }
  ADD_FAILURE() << "no row " << name;
  return 0;
}

TEST(FbxDocument, SectionsOfAnEmptySceneInOrderAndReproducible) {
  const FbxCreationTime time{2026, 11, 23, 9, 5, 7, 42};
  const std::string file = WriteEmptyScene(time);
  EXPECT_EQ(file, WriteEmptyScene(time)) << "a fixed clock gives the same bytes";
  EXPECT_NE(file, WriteEmptyScene({2026, 11, 23, 9, 5, 7, 43}));

  testsupport::FbxReadFile read;
  std::string error;
  ASSERT_TRUE(testsupport::ReadFbxBinary(file, read, error)) << error;
  std::vector<std::string> names;
  for (const FbxReadRecord& record : read.records) names.push_back(record.name);
  EXPECT_EQ(names,
            (std::vector<std::string>{"FBXHeaderExtension", "FileId", "CreationTime", "Creator", "GlobalSettings",
                                      "Documents", "References", "Definitions", "Objects", "Connections", "Takes"}));
  EXPECT_EQ(read.Record("CreationTime")->properties[0].bytes, "2026-11-23 09:05:07:042");
  u8 id[16];
  FbxFileId("2026-11-23 09:05:07:042", id);
  EXPECT_EQ(read.Record("FileId")->properties[0].bytes, std::string(reinterpret_cast<char*>(id), 16));
  FbxFooterId("2026-11-23 09:05:07:042", id);
  EXPECT_EQ(read.footerId, std::string(reinterpret_cast<char*>(id), 16));

  const FbxReadRecord* header = read.Record("FBXHeaderExtension");
  EXPECT_EQ(header->Child("FBXVersion")->properties[0].integer, 7200);
  EXPECT_EQ(header->Child("CreationTimeStamp")->Child("Millisecond")->properties[0].integer, 42);
  const FbxReadRecord* meta = header->Child("SceneInfo")->Child("MetaData");
  EXPECT_EQ(meta->Child("Title")->properties[0].bytes, "Tarnwick export");
  EXPECT_EQ(meta->Child("Author")->properties[0].bytes, "Tarnwick.exe");
  EXPECT_EQ(meta->Child("Revision")->properties[0].bytes, "1.0");

  const FbxReadRecord* settings = read.Record("GlobalSettings")->Child("Properties70");
  EXPECT_EQ(RowValue(*settings, "UnitScaleFactor"), 100.0) << "metres";
  EXPECT_EQ(RowValue(*settings, "OriginalUnitScaleFactor"), 100.0);
  EXPECT_EQ(read.Record("Documents")->Child("Document")->properties[1].bytes, "Tarnwick");
  EXPECT_TRUE(read.Record("Objects")->closedByNull);
  EXPECT_TRUE(read.Record("References")->closedByNull);
}

}  // namespace
