// docs/statuses.md: it covers every export, what it says is what the header says, and the tests
// that it names are there. Each check is also shown a document that is wrong.
#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/boundary/statuses_table.h"

namespace undercut::tests {

namespace {

using Names = std::set<std::string>;
using Codes = std::set<int32_t>;
using Faults = std::vector<std::string>;

bool is_Word(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }
bool is_Digit(char c) { return std::isdigit(static_cast<unsigned char>(c)); }

// ---- What there is: exports, setters, tests -----------------------------------------------------

Names list_Setters() {
  return {
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) #setter,
#include <undercut/interface/setters.def>
#undef UNDERCUT_SETTER
  };
}

// Every name that a semicolon follows between "global:" and "local:".
Names list_Exports() {
  const std::string text = load_Source("src/interface/exports.map");
  Names names;
  std::string name;
  for (size_t i = text.find("global:") + 7; i < text.find("local:"); ++i) {
    if (is_Word(text[i])) {
      name += text[i];
      continue;
    }
    if (text[i] == ';') names.insert(name);
    name.clear();
  }
  return names;
}

// Adds Suite.Name of each TEST, TEST_F and TEST_P of a source.
void add_Tests(const std::string& text, Names& tests) {
  for (size_t at = text.find("TEST"); at != std::string::npos; at = text.find("TEST", at + 1)) {
    if (at != 0 && is_Word(text[at - 1])) continue;
    const size_t open = text.find('(', at), close = text.find(')', at);
    if (close == std::string::npos || open > close) continue;
    const std::string macro = text.substr(at, open - at);
    if (macro != "TEST" && macro != "TEST_F" && macro != "TEST_P") continue;
    const std::string both = text.substr(open + 1, close - open - 1);
    const size_t comma = both.find(',');
    if (comma == std::string::npos) continue;
    tests.insert(trimmed(both.substr(0, comma)) + "." + trimmed(both.substr(comma + 1)));
  }
}

Names list_Tests() {
  Names tests;
  const std::filesystem::path root(UNDERCUT_SOURCE);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root / "tests")) {
    if (entry.path().extension() != ".cpp") continue;
    add_Tests(load_Source(std::filesystem::relative(entry.path(), root).string()), tests);
  }
  return tests;
}

// ---- What the header says -----------------------------------------------------------------------

// A line of words, without the stars of a comment.
std::string flatten(const std::string& comment) {
  std::string words;
  for (const char c : comment) {
    const bool blank = c == ' ' || c == '\n' || c == '*' || c == '/';
    if (!blank)
      words += c;
    else if (!words.empty() && words.back() != ' ')
      words += ' ';
  }
  return words;
}

// The number that begins at a place of the text; moves the place behind it. Not a code are parts of
// longer words and numbers with digits behind a point.
bool read_Code(const std::string& text, size_t& at, int32_t& code) {
  if (text[at] != '-' || at + 1 >= text.size() || !is_Digit(text[at + 1])) return false;
  if (at != 0 && (is_Word(text[at - 1]) || text[at - 1] == '.')) return false;
  size_t end = at + 1;
  while (end < text.size() && is_Digit(text[end])) ++end;
  if (end + 1 < text.size() && text[end] == '.' && is_Digit(text[end + 1])) return false;
  code = std::stoi(text.substr(at, end - at));
  at = end;
  return true;
}

// Whether the word before a place says that a limit follows and no code.
bool is_Limit(const std::string& text, size_t at) {
  return at >= 6 &&
         (text.compare(at - 6, 6, "below ") == 0 || text.compare(at - 6, 6, "above ") == 0);
}

// Codes below 0, and all from one to another where the text says "-7 to -9".
void add_Negative(const std::string& text, Codes& codes) {
  for (size_t at = 0; at < text.size(); ++at) {
    int32_t first = 0, last = 0;
    const bool limit = is_Limit(text, at);
    if (!read_Code(text, at, first)) continue;
    last = first;
    if (text.compare(at, 4, " to ") == 0) {
      size_t next = at + 4;
      if (read_Code(text, next, last)) at = next;
    }
    for (int32_t code = first; !limit && code >= last; --code) codes.insert(code);
    --at;
  }
}

// The statuses above 0 are told as "Returns 0; 1 if".
void add_Positive(const std::string& text, Codes& codes) {
  for (size_t at = text.find("; "); at != std::string::npos; at = text.find("; ", at + 1)) {
    if (!is_Digit(text[at + 2])) continue;
    size_t length = 0;
    const int32_t code = std::stoi(text.substr(at + 2), &length);
    if (text[at + 2 + length] == ' ') codes.insert(code);
  }
}

void add_Named(const std::string& text, Codes& codes) {
  const std::pair<const char*, int32_t> named[] = {
      {"UNDERCUT_NO_MEMORY", UNDERCUT_NO_MEMORY},
      {"UNDERCUT_BAD_VERTEX", UNDERCUT_BAD_VERTEX},
      {"UNDERCUT_BAD_TRIANGLE", UNDERCUT_BAD_TRIANGLE}};
  for (const auto& [name, code] : named)
    if (text.find(name) != std::string::npos) codes.insert(code);
}

// Where a comment that several exports share gives the codes of one: "get_Rma gives -1 to -6".
std::string own_Part(const std::string& text, const std::string& name) {
  for (const std::string& begin : {name + " gives -", name + " -"}) {
    const size_t at = text.find(begin);
    if (at == std::string::npos) continue;
    const size_t from = at + name.size();
    return text.substr(from, std::min(text.find("get_", from), text.find('.', from)) - from);
  }
  return text;
}

class CHeader {
 public:
  explicit CHeader(const std::string& header) { read(header); }
  const std::map<std::string, Codes>& codes() const { return codes_; }

 private:
  // Walks over block comments and declarations. A comment that begins with dashes is that of all
  // exports up to the next such.
  void read(const std::string& header) {
    const std::string declares = "UNDERCUT_API int32_t ";
    for (size_t at = 0; at < header.size(); ++at) {
      if (header.compare(at, 2, "/*") == 0) {
        const size_t end = header.find("*/", at);
        const std::string text = flatten(header.substr(at, end - at));
        const bool heads = header.compare(at, 5, "/* --") == 0;
        (heads ? section_ : comment_) = text;
        if (heads) comment_.clear();
        at = end + 1;
      } else if (header.compare(at, declares.size(), declares) == 0) {
        at += declares.size();
        const std::string name = header.substr(at, header.find('(', at) - at);
        if (name != "setter") codes_[name] = find_Codes(name);
        last_ = name;
      }
    }
  }
  Codes find_Codes(const std::string& name) {
    Codes found = {0};
    const std::string own = own_Part(comment_, name);
    for (const std::string& text : {section_, own}) add_Negative(text, found);
    for (const std::string& text : {section_, comment_}) add_Named(text, found);
    add_Positive(comment_, found);
    add_Referred(found);
    if (comment_.find("The same without") != std::string::npos) {
      const Codes& same = codes_[last_];
      found.insert(same.begin(), same.end());
    }
    return found;
  }
  // "as get_Sta to -12": what that one gives up to there.
  void add_Referred(Codes& found) {
    for (const auto& [name, codes] : codes_) {
      const std::string begin = " as " + name + " to ";
      const size_t at = comment_.find(begin);
      if (at == std::string::npos) continue;
      size_t place = at + begin.size();
      int32_t last = 0;
      if (!read_Code(comment_, place, last)) continue;
      for (const int32_t code : codes)
        if (code >= last || code <= UNDERCUT_NO_MEMORY) found.insert(code);
    }
  }

  std::map<std::string, Codes> codes_;
  std::string section_, comment_, last_;
};

// ---- The checks ---------------------------------------------------------------------------------

const std::string kSetters = "Setters";  // the one section that stands for all of them
const std::string kNotReachable = "not reachable: ";

// Every export has a section, the setters one together, and nothing else has.
Faults check_Sections(const std::vector<TStatusSection>& sections, const Names& exports,
                      const Names& setters) {
  Names wanted = {kSetters};
  for (const std::string& name : exports)
    if (!setters.count(name)) wanted.insert(name);
  Faults faults;
  for (const TStatusSection& section : sections) {
    if (wanted.erase(section.name) == 0) faults.push_back(section.name + ": no export, or twice");
    for (const std::string& line : section.strange) faults.push_back(line + ": no row");
  }
  for (const std::string& name : wanted) faults.push_back(name + ": no section");
  return faults;
}

// Rows begin with 0 and lead away from it, each status once, each with a meaning.
Faults check_Rows(const std::vector<TStatusSection>& sections) {
  Faults faults;
  for (const TStatusSection& section : sections) {
    int32_t before = -1;
    if (section.rows.empty() || section.rows[0].status != 0)
      faults.push_back(section.name + ": does not begin with 0");
    for (const TStatusRow& row : section.rows) {
      const std::string where = section.name + " " + std::to_string(row.status);
      if (std::abs(row.status) <= before) faults.push_back(where + ": out of order");
      if (row.meaning.empty()) faults.push_back(where + ": no meaning");
      before = std::abs(row.status);
    }
  }
  return faults;
}

// Each row names a test that is there, or says why there is none.
Faults check_Tests(const std::vector<TStatusSection>& sections, const Names& tests) {
  Faults faults;
  for (const TStatusSection& section : sections)
    for (const TStatusRow& row : section.rows) {
      const std::string where = section.name + " " + std::to_string(row.status) + ": ";
      const std::string& shown = row.shown;
      if (shown.rfind(kNotReachable, 0) == 0) continue;
      const bool quoted = shown.size() > 2 && shown.front() == '`' && shown.back() == '`';
      if (!quoted || !tests.count(shown.substr(1, shown.size() - 2)))
        faults.push_back(where + (shown.empty() ? "nothing" : shown) + " is no test");
    }
  return faults;
}

// The table and the header tell the same codes. That of a step without a code of its own is told in
// general, and named for an export only where that helps.
Faults check_Header(const std::vector<TStatusSection>& sections,
                    const std::map<std::string, Codes>& header) {
  Faults faults;
  for (const TStatusSection& section : sections) {
    const auto told = header.find(section.name);
    if (told == header.end()) continue;  // check_Sections tells of it
    Codes listed;
    for (const TStatusRow& row : section.rows) listed.insert(row.status);
    for (const int32_t code : listed)
      if (code != UNDERCUT_NO_MEMORY && !told->second.count(code))
        faults.push_back(section.name + " " + std::to_string(code) + ": not in the header");
    for (const int32_t code : told->second)
      if (!listed.count(code))
        faults.push_back(section.name + " " + std::to_string(code) + ": in the header alone");
  }
  return faults;
}

const std::vector<TStatusSection>& the_Document() {
  static const auto sections = read_Statuses(load_Source("docs/statuses.md"));
  return sections;
}

TEST(Statuses, HaveASectionForEachExport_AndOneForTheSetters) {
  EXPECT_EQ(check_Sections(the_Document(), list_Exports(), list_Setters()), Faults());
  EXPECT_EQ(the_Document().size(), 34u);
}

TEST(Statuses, BeginWithZeroAndLeadAwayFromIt) { EXPECT_EQ(check_Rows(the_Document()), Faults()); }

TEST(Statuses, AreShownByATestThatIsThere_OrCanNotBeReached) {
  EXPECT_EQ(check_Tests(the_Document(), list_Tests()), Faults());
}

TEST(Statuses, AreThoseThatTheHeaderTells) {
  EXPECT_EQ(check_Header(the_Document(), CHeader(load_Source("src/interface/exports.h")).codes()),
            Faults());
}

// ---- docs/computations.md ----------------------------------------------------------------------

// What is wrong with the sections of computations: each has one, and in it a link to its statuses.
Faults check_Computations(const std::string& document, Names computations) {
  Faults faults;
  const std::string begin = "\n### ";
  for (size_t at = document.find(begin); at != std::string::npos;) {
    at += begin.size();
    const size_t end = std::min(document.find(begin, at), document.size());
    const std::string name = document.substr(at, document.find('\n', at) - at);
    std::string link = "(statuses.md#";
    for (const char c : name) link += static_cast<char>(std::tolower(c));
    if (computations.erase(name) == 0) faults.push_back(name + ": no computation, or twice");
    if (document.substr(at, end - at).find(link + ")") == std::string::npos)
      faults.push_back(name + ": no link to its statuses");
    at = document.find(begin, at);
  }
  for (const std::string& name : computations) faults.push_back(name + ": no section");
  return faults;
}

Names list_Computations() {
  Names names = list_Exports();
  for (const std::string& setter : list_Setters()) names.erase(setter);
  for (const char* name : {"ini_Req", "ini_Res", "clr_Res", "clr_Sub", "ini_Adt", "clr_Dll",
                           "cnt_Tri", "get_Roi", "get_Shd"})
    names.erase(name);
  return names;
}

TEST(ComputationsDocument, HasASectionForEach_WithALinkToItsStatuses) {
  EXPECT_EQ(list_Computations().size(), 24u);
  EXPECT_EQ(check_Computations(load_Source("docs/computations.md"), list_Computations()), Faults());
}

TEST(ComputationsDocument, IsToldWhereItIsWrong) {
  const Names two = {"get_A", "get_B"};
  const std::string a = "\n### get_A\n(statuses.md#get_a)\n";
  EXPECT_EQ(check_Computations(a + "\n### get_B\n(statuses.md#get_b)", two), Faults());
  EXPECT_EQ(check_Computations(a, two), Faults{"get_B: no section"});
  EXPECT_EQ(check_Computations(a + "\n### get_B\n(statuses.md#get_a)", two),
            Faults{"get_B: no link to its statuses"});
  EXPECT_EQ(check_Computations(a + a, {"get_A"}), Faults{"get_A: no computation, or twice"});
}

// ---- The checks can fail ------------------------------------------------------------------------

const char kGood[] =
    "# Statuses\n\n| a table | before | any section |\n\n## get_One\n\n"
    "| Status | Meaning | Shown by |\n|---|---|---|\n| 0 | done | `A.B` |\n| -1 | bad | `C.D` |\n"
    "| -1000 | no memory | not reachable: it needs none |\n\n## Setters\n\n| 0 | set | `A.B` |\n";
const Names kExports = {"get_One", "set_One"}, kOwnSetters = {"set_One"}, kTests = {"A.B", "C.D"};
const std::map<std::string, Codes> kHeader = {{"get_One", {0, -1}}};

// The document with one text in place of another.
std::vector<TStatusSection> read_Changed(const std::string& from, const std::string& to) {
  std::string text = kGood;
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return read_Statuses(text.replace(at, from.size(), to));
}

Faults check_All(const std::vector<TStatusSection>& sections) {
  Faults all;
  for (const Faults& faults :
       {check_Sections(sections, kExports, kOwnSetters), check_Rows(sections),
        check_Tests(sections, kTests), check_Header(sections, kHeader)})
    all.insert(all.end(), faults.begin(), faults.end());
  return all;
}

TEST(StatusesWrong, AreNone_InAGoodDocument) {
  EXPECT_EQ(check_All(read_Statuses(kGood)), Faults());
}

TEST(StatusesWrong, AreTold) {
  const struct {
    const char *from, *to, *told;
  } cases[] = {
      {"get_One", "get_Two", "get_One: no section"},
      {"## Setters", "## get_One", "Setters: no section"},
      {"| -1 | bad | `C.D` |", "| -1 | bad | `C.D` | more |", "get_One -1: in the header alone"},
      {"| -1 | bad | `C.D` |", "| one | bad | `C.D` |", "| one | bad | `C.D` |: no row"},
      {"| -1 | bad | `C.D` |", "| 0 | bad | `C.D` |", "get_One 0: out of order"},
      {"| 0 | done | `A.B` |\n| -1", "| -1", "get_One: does not begin with 0"},
      {"| -1 |", "| -2000 |", "get_One -1000: out of order"},
      {"| bad |", "|  |", "get_One -1: no meaning"},
      {"`C.D`", "`C.E`", "get_One -1: `C.E` is no test"},
      {"`C.D`", "C.D", "get_One -1: C.D is no test"},
      {"`C.D`", "", "get_One -1: nothing is no test"},
      {"not reachable: it needs none", "not reachable", "get_One -1000: not reachable is no test"},
      {"not reachable: it needs none",
       "not reachable: ", "get_One -1000: not reachable: is no test"},
      {"| -1 |", "| -2 |", "get_One -2: not in the header"},
  };
  for (const auto& c : cases) {
    const Faults faults = check_All(read_Changed(c.from, c.to));
    EXPECT_NE(std::find(faults.begin(), faults.end(), c.told), faults.end())
        << c.told << " in " << testing::PrintToString(faults);
  }
}

TEST(StatusesWrong, FindTestsInEachForm_AndNoneInOtherWords) {
  Names tests;
  add_Tests(
      "TEST(A, B) {\nTEST_F(C,\n       D) {\nTEST_P(E, F)\nTEST_X(G, H)\n#define A_TEST(I, J)\n"
      "MY_TEST(K, L) TEST M(N, O)",
      tests);
  EXPECT_EQ(tests, (Names{"A.B", "C.D", "E.F"}));
}

TEST(StatusesWrong, ReadTheCodesOfAHeader) {
  const CHeader header(
      "/* ---- One ---- */\n/* Codes: -1 a, -3 to -5 b\n * below -360, -1.5e3, a-9; 7 is 8. */\n"
      "UNDERCUT_API int32_t get_A(int);\n"
      "/* The same without b. */\nUNDERCUT_API int32_t get_B(int);\n"
      "/* ---- Two.\n * All give -2. */\n/* Codes as get_A to -4, UNDERCUT_BAD_VERTEX; -6 */\n"
      "UNDERCUT_API int32_t get_C(int);\n"
      "/* -1 to -9. get_D gives -1 and -3, get_E -4. */\n"
      "UNDERCUT_API int32_t get_D(int);\nUNDERCUT_API int32_t get_E(int);\n");
  EXPECT_EQ(header.codes(),
            (std::map<std::string, Codes>{{"get_A", {0, -1, -3, -4, -5, 7}},
                                          {"get_B", {0, -1, -3, -4, -5, 7}},
                                          {"get_C", {0, 7, -1, -2, -3, -4, -6, -1001}},
                                          {"get_D", {0, -1, -2, -3}},
                                          {"get_E", {0, -2, -4}}}));
}

}  // namespace

}  // namespace undercut::tests
