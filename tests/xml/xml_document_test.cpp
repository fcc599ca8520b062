#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "xml/memory_stream.h"
#include "xml/xml.h"

namespace {

// A loaded document and its root; null when the load failed.
struct Loaded {
  explicit Loaded(const std::string& text) : document(CreateXML()) {
    CByteBuffer bytes;
    EXPECT_TRUE(bytes.SetSize(static_cast<u32>(text.size())));
    if (!text.empty()) std::memcpy(bytes.Data(), text.data(), text.size());
    CMemoryStream stream(bytes);
    ok = document->LoadStream(&stream);
  }
  IXMLData* Root() { return ok ? document->GetRoot() : nullptr; }

  TReleaser<IXML> document;
  bool ok = false;
};

std::string QualifiedNames(IXMLData* record) {
  std::string out = record->GetQualifiedName();
  for (IXMLData* child = record->GetFirstChild(); child; child = child->GetNextSibling()) {
    if (child->GetNodeType() != kXMLElement) continue;
    out += ' ';
    out += QualifiedNames(child);
  }
  return out;
}

TEST(XMLDocument, NamespacesGiveQualifiedNames) {
  const std::pair<const char*, const char*> cases[] = {
      {"<r xmlns=\"u\" xmlns:p=\"u\"><a/><p:b/></r>", "p:r p:a p:b"},
      {"<r xmlns:p=\"u\" xmlns=\"u\"><a/></r>", "p:r p:a"},
      {"<r xmlns=\"u\"><a/></r>", "r a"},
      {"<r xmlns=\"u\" xmlns:p=\"u\"><a xmlns=\"\"/></r>", "p:r a"},
      {"<r><a xmlns:p=\"u\" xmlns=\"u\"/><b/></r>", "r p:a b"},  // a declaration ends with its element
  };
  for (const auto& [text, names] : cases) {
    Loaded xml(text);
    ASSERT_NE(xml.Root(), nullptr) << text;
    EXPECT_EQ(QualifiedNames(xml.Root()), names) << text;
  }
}

TEST(XMLDocument, ValuesComeFromTheFirstTextChildOnly) {
  Loaded xml("<a>one<!-- c -->two<b><![CDATA[x]]></b><c e=\"\" Name=\"v\"/></a>");
  IXMLData* root = xml.Root();
  ASSERT_NE(root, nullptr);
  EXPECT_STREQ(root->GetValue(), "one");
  IXMLData* b = root->FindChild("B", nullptr);
  ASSERT_NE(b, nullptr);
  EXPECT_STREQ(b->GetValue(), "") << "CDATA gives no value";
  EXPECT_EQ(b->GetFirstChild()->GetNodeType(), kXMLCData);
  IXMLData* c = root->FindChild("c", nullptr);
  EXPECT_STREQ(c->FindAttribute("NAME", nullptr)->GetValue(), "v");
  EXPECT_STREQ(c->FindAttribute("e", nullptr)->GetValue(), "");
  EXPECT_STREQ(c->FindAttribute("e", nullptr)->GetQualifiedName(), "") << "attributes have none";
  EXPECT_STREQ(root->GetReservedText1(), "");
}

TEST(XMLDocument, QueriesAndResultSets) {
  Loaded xml("<r><item n=\"1\"/><other/><Item n=\"2\"/><item n=\"3\"/></r>");
  IXMLData* root = xml.Root();
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->GetChildrenByName("nothing"), nullptr) << "no match is null, not an empty set";
  EXPECT_EQ(root->GetAttributesByName("n"), nullptr) << "an empty list too";
  TReleaser<IXMLResultSet> items(root->GetChildrenByName("ITEM"));
  ASSERT_TRUE(items);
  ASSERT_EQ(items->GetCount(), 3);
  EXPECT_EQ(items->GetItem(-1), nullptr);
  EXPECT_EQ(items->GetItem(3), nullptr);
  std::string seen;
  items->ForEach(
      [](IXMLData* item, void* context) {
        *static_cast<std::string*>(context) += item->FindAttribute("n", nullptr)->GetValue();
        return std::strcmp(item->FindAttribute("n", nullptr)->GetValue(), "2") != 0;
      },
      &seen);
  EXPECT_EQ(seen, "12") << "stops after the first false";

  IXMLData* first = root->FindChild("item", nullptr);
  IXMLData* second = root->FindChild("item", first);
  EXPECT_STREQ(second->FindAttribute("n", nullptr)->GetValue(), "2");
  EXPECT_EQ(root->FindChild("item", second->GetFirstAttribute()), first) << "`after` from another list";
}

TEST(XMLDocument, BadInputFailsWithTheParserCode) {
  for (const char* text : {"<a><b></a>", "", "no markup", "<a/><b/>"}) {
    Loaded xml(text);
    EXPECT_FALSE(xml.ok) << text;
    const std::string error = xml.document->GetError();
    EXPECT_EQ(error.substr(0, 16), "XML parse error ") << error;
    EXPECT_EQ(error.find_first_not_of("0123456789ABCDEF", 16), 24u) << error;
    EXPECT_EQ(error.substr(24, 9), " at line ") << error;
  }
  std::string deep;
  for (int i = 0; i < 1000; ++i) deep += "<a>";
  for (int i = 0; i < 1000; ++i) deep += "</a>";
  EXPECT_FALSE(Loaded(deep).ok) << "nesting beyond the limit is refused";

  // A long prefix that every unprefixed element would copy into its qualified name: 16 KB of file
  // asking for 12 MB of texts.
  std::string amplified = "<r xmlns:" + std::string(4000, 'p') + "=\"u\" xmlns=\"u\">";
  for (int i = 0; i < 3000; ++i) amplified += "<a/>";
  EXPECT_FALSE(Loaded(amplified + "</r>").ok);
}

TEST(XMLDocument, ASecondLoadStartsAfresh) {
  const std::string text = "<r xmlns:p=\"u\" xmlns=\"u\">hello<a/></r>";
  TReleaser<IXML> document(CreateXML());
  for (const std::string& load : {text, text, std::string("<b/>")}) {
    CByteBuffer bytes;
    ASSERT_TRUE(bytes.SetSize(static_cast<u32>(load.size())));
    std::memcpy(bytes.Data(), load.data(), load.size());
    CMemoryStream stream(bytes);
    ASSERT_TRUE(document->LoadStream(&stream));
    if (load == text) {
      EXPECT_EQ(QualifiedNames(document->GetRoot()), "p:r p:a");
    }
  }
  EXPECT_STREQ(document->GetRoot()->GetValue(), "") << "nothing of the earlier root stays";
  EXPECT_EQ(QualifiedNames(document->GetRoot()), "b");
}

}  // namespace
