// The file-creation log, through the exports: its record format, the
// look-up rules, deletion, compaction and concurrent appends.
#include <windows.h>

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

#include "MvSup2u.h"
#include "common/paths.h"
#include "common/trace_log.h"
#include "storage/storage_support.h"

namespace mvsup::test {
namespace {

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005);
constexpr const wchar_t* kAppendChild = L"MVSUP_STORAGE_APPEND_CHILD";
constexpr const wchar_t* kTraceChild = L"MVSUP_STORAGE_LOG_TRACE_CHILD";
constexpr const wchar_t* kStartEvent = L"Local\\mvsup-storage-append-start";
constexpr int kAppenders = 4;
constexpr int kRecordsPerAppender = 300;

std::string record(const std::string& path, const std::string& creator, char state = '+') {
  return std::string("<<") + state + "> <TIME=1/2 3:4:5> <PATH=" + path + "> <CREATER=" + creator + ">>\r\n";
}

// Child modes, run before any test when the variable is set.
[[maybe_unused]] const bool kRanAsChild = [] {
  if (const std::wstring index = child_variable(kAppendChild); !index.empty()) {
    HANDLE start = OpenEventW(SYNCHRONIZE, FALSE, kStartEvent);
    if (start) WaitForSingleObject(start, 20000);
    int written = 0;
    for (int i = 0; i < kRecordsPerAppender; ++i) {
      const std::wstring path = L"C:\\concurrent\\" + index + L"\\file" + std::to_wstring(i) + L".txt";
      written += LogFileCreation(path.c_str(), (L"Appender" + index).c_str());
    }
    ExitProcess(written == kRecordsPerAppender ? 0 : 2);
  }
  if (const std::wstring directory = child_variable(kTraceChild); !directory.empty()) {
    const std::wstring kept = directory + L"\\kept.txt";
    int failures = -1;
    LogFileCreation((directory + L"\\gone.txt").c_str(), L"MvNsx");
    LogFileCreation(kept.c_str(), L"MvNsx");
    // Held open without delete sharing: its deletion fails.
    HANDLE busy = CreateFileW(kept.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    const bool ok = DeleteLoggedFilesOf(directory.c_str(), &failures, 0) == 1 && failures == 1 &&
                    DeleteLoggedFile(kept.c_str(), nullptr) == static_cast<HRESULT>(0x80070020);
    CloseHandle(busy);
    ExitProcess(ok ? 0 : 2);
  }
  return false;
}();

class FileCreationLog : public LogTest {
 protected:
  void SetUp() override {
    LogTest::SetUp();
    files_ = std::make_unique<TempDirectory>();
  }
  void TearDown() override {
    files_.reset();
    LogTest::TearDown();
  }
  // A real file in a fresh directory.
  std::wstring make_file(const std::wstring& name, DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    const std::wstring path = files_->path() + L"\\" + name;
    write_file(path, "content");
    SetFileAttributesW(path.c_str(), attributes);
    return path;
  }
  std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

  std::unique_ptr<TempDirectory> files_;
};

TEST_F(FileCreationLog, RecordsAreAppendedInTheLogFormat) {
  SYSTEMTIME before, after;
  GetSystemTime(&before);
  ASSERT_EQ(LogFileCreation(L"C:\\Files\\Report.doc", L"MvNsx"), 1);
  ASSERT_EQ(LogFileCreation(L"C:\\Files\\Caf\u00e9.doc", L"MvOdma"), 1);
  GetSystemTime(&after);
  const std::string text = read_file(log_file());
  const std::regex line(
      "<<\\+> <TIME=([1-9]\\d*)/([1-9]\\d*) (0|[1-9]\\d*):(0|[1-9]\\d*):(0|[1-9]\\d*)> "
      "<PATH=C:\\\\Files\\\\Report\\.doc> <CREATER=MvNsx>>\r\n"
      "<<\\+> <TIME=[^>]*> <PATH=C:\\\\Files\\\\Caf\xe9\\.doc> <CREATER=MvOdma>>\r\n");
  std::smatch match;
  ASSERT_TRUE(std::regex_match(text, match, line)) << text;
  // UTC, month/day hour:minute:second, no padding.
  const auto same = [&](const SYSTEMTIME& t) {
    return std::stoi(match[1]) == t.wMonth && std::stoi(match[2]) == t.wDay && std::stoi(match[3]) == t.wHour &&
           std::stoi(match[4]) == t.wMinute && std::stoi(match[5]) == t.wSecond;
  };
  EXPECT_TRUE(same(before) || same(after)) << text;
}

TEST_F(FileCreationLog, ValuesThatWouldNotReadBackAreRefused) {
  const std::wstring long_path = L"C:\\" + std::wstring(257, L'a');  // 260 characters
  const std::wstring long_creator(80, L'c');
  for (const auto& [path, creator] : std::vector<std::pair<const wchar_t*, const wchar_t*>>{
           {nullptr, L"MvNsx"},
           {L"C:\\a.txt", nullptr},
           {L"", L"MvNsx"},
           {L"C:\\a.txt", L""},
           {L"C:\\a.txt", L"Mv>Nsx"},
           {L"C:\\a.txt", L"Mv<Nsx"},
           {L"C:\\a\r\nb.txt", L"MvNsx"},
           {L"C:\\a.txt", long_creator.c_str()},
           {long_path.c_str(), L"MvNsx"},
           // Best fit would turn the fullwidth sign into '>'.
           {L"C:\\a.txt", L"Mv\uff1eNsx"},
       }) {
    EXPECT_EQ(LogFileCreation(path, creator), 0);
  }
  EXPECT_EQ(read_file(log_file()), "<missing>");
  EXPECT_EQ(LogFileCreation((L"C:\\" + std::wstring(256, L'a')).c_str(), std::wstring(79, L'c').c_str()), 1);
}

TEST_F(FileCreationLog, LookupTakesTheFirstLiveRecordOfAPath) {
  write_file(log_file(), record("C:\\Files\\Old.doc", "MvNsx", '-') +       // obsolete: not looked at
                             record("C:\\Files\\Old.doc", "MvAxess") +
                             record("C:\\Files\\Shared.doc", "MvNsx") +
                             record("C:\\Files\\Shared.doc", "MvOdma") +  // never reached
                             "garbage <PATH=C:\\Files\\Loose.doc> no record\r\n" +
                             "<<+> <TIME=1/2 3:4:5> <PATH=C:\\Files\\Open.doc> <CREATER=MvNsx>");  // unterminated
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Shared.doc", L"MvNsx"), 0);
  EXPECT_EQ(GetIsLoggedFile(L"c:\\files\\SHARED.DOC", L"mvnsx"), 0);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Shared.doc", nullptr), 0);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Shared.doc", L"MvOdma"), 1);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Old.doc", L"MvAxess"), 0);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Old.doc", L"MvNsx"), 1);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Loose.doc", nullptr), 1);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Open.doc", nullptr), 1);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Shared.do", nullptr), 1);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Shared.docx", nullptr), 1);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\Files\\Other.doc", nullptr), 1);
  EXPECT_EQ(GetIsLoggedFile(nullptr, nullptr), 1);
}

// The log is read in 64 KiB pieces: a record is found wherever it falls
// against their boundaries, and a record split there is seen whole.
TEST_F(FileCreationLog, LookupFindsRecordsAcrossReadBoundaries) {
  const std::string wanted = record("C:\\Target\\file123.txt", "MvNsx");
  const std::string other = record("C:\\Target\\file124.txt", "MvAxess");
  for (size_t shift = 0; shift < 96; shift += 3) {
    std::string text;
    while (text.size() + other.size() < 65536 - 48 + shift) text += other;
    text += std::string(65536 - 48 + shift - text.size(), ' ');
    text += wanted;
    text += other;
    write_file(log_file(), text);
    ASSERT_EQ(GetIsLoggedFile(L"C:\\Target\\FILE123.txt", L"MvNsx"), 0) << "shift " << shift;
    ASSERT_EQ(GetIsLoggedFile(L"C:\\Target\\file123.txt", L"MvAxess"), 1) << "shift " << shift;
    ASSERT_EQ(GetIsLoggedFile(L"C:\\Target\\file124.txt", L"MvAxess"), 0) << "shift " << shift;
  }
}

TEST_F(FileCreationLog, ALogThatCannotBeOpenedFails) {
  // A missing log is created empty, as appending would.
  EXPECT_EQ(GetIsLoggedFile(L"C:\\a.txt", nullptr), 1);
  EXPECT_EQ(read_file(log_file()), "");
  DeleteFileW(log_file().c_str());
  ASSERT_TRUE(CreateDirectoryW(log_file().c_str(), nullptr));
  EXPECT_EQ(LogFileCreation(L"C:\\a.txt", L"MvNsx"), 0);
  EXPECT_EQ(GetIsLoggedFile(L"C:\\a.txt", nullptr), kFail);
  EXPECT_EQ(DeleteLoggedFile(L"C:\\a.txt", nullptr), kFail);
  EXPECT_EQ(UpdateLogFile(), kFail);
  int count = -1;
  EXPECT_EQ(DeleteLoggedFilesOf(L"C:\\", &count, 1), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(DeleteFilesLoggedBy(L"MvNsx", &count), kFail);
  RemoveDirectoryW(log_file().c_str());
}

TEST_F(FileCreationLog, DeleteLoggedFileDeletesReadOnlyFilesAndCompacts) {
  const std::wstring report = make_file(L"report.doc", FILE_ATTRIBUTE_READONLY);
  const std::wstring other = make_file(L"other.doc");
  const std::wstring unlogged = make_file(L"unlogged.doc");
  ASSERT_EQ(LogFileCreation(report.c_str(), L"MvNsx"), 1);
  ASSERT_EQ(LogFileCreation(other.c_str(), L"MvNsx"), 1);
  EXPECT_EQ(DeleteLoggedFile(unlogged.c_str(), nullptr), 1);
  EXPECT_EQ(DeleteLoggedFile(report.c_str(), L"MvOdma"), 1);
  EXPECT_TRUE(exists(unlogged) && exists(report));

  EXPECT_EQ(DeleteLoggedFile(report.c_str(), L"MVNSX"), S_OK);
  EXPECT_FALSE(exists(report));
  EXPECT_EQ(GetIsLoggedFile(report.c_str(), nullptr), 1);
  EXPECT_EQ(GetIsLoggedFile(other.c_str(), nullptr), 0);

  // A file removed outside the client: the error, and the log is unchanged.
  DeleteFileW(other.c_str());
  const std::string before = read_file(log_file());
  EXPECT_EQ(DeleteLoggedFile(other.c_str(), nullptr), static_cast<HRESULT>(0x80070002));
  EXPECT_EQ(read_file(log_file()), before);
}

TEST_F(FileCreationLog, CompactionSwapsLegacyRecordsAndDropsTheObsolete) {
  const std::string kept = narrow(make_file(L"kept.doc"));
  const std::string legacy = narrow(make_file(L"legacy.doc"));
  const std::string gone = narrow(files_->path() + L"\\gone.doc");
  const std::string legacy_record = "<<+> <TIME=1/2 3:4:5> <PATH=MVCMS> <CREATER=" + legacy + ">>";
  write_file(log_file(), record(kept, "MvNsx") + legacy_record + "\r\n" + record(gone, "MvNsx") +
                             record(kept, "MvAxess", '-') + "stray text\r\n" +
                             "<<+> <TIME=1/2 3:4:5> <PATH=MVCMS> <CREATER=" + gone + ">>\r\n");
  ASSERT_EQ(UpdateLogFile(), S_OK);
  const std::string swapped = "<<+> <TIME=1/2 3:4:5> <PATH=" + legacy + "> <CREATER=MVCMS>>";
  EXPECT_EQ(swapped.size(), legacy_record.size());
  EXPECT_EQ(read_file(log_file()), record(kept, "MvNsx") + swapped + "\r\n");
  EXPECT_EQ(GetIsLoggedFile(std::wstring(legacy.begin(), legacy.end()).c_str(), L"MVCMS"), 0);

  // Nothing left to keep: an empty log remains.
  DeleteFileW(std::wstring(kept.begin(), kept.end()).c_str());
  DeleteFileW(std::wstring(legacy.begin(), legacy.end()).c_str());
  ASSERT_EQ(UpdateLogFile(), S_OK);
  EXPECT_EQ(read_file(log_file()), "");
}

TEST_F(FileCreationLog, DeleteLoggedFilesOfSelectsByDirectory) {
  const std::wstring root = files_->path();
  CreateDirectoryW((root + L"\\Work").c_str(), nullptr);
  CreateDirectoryW((root + L"\\Work\\Sub").c_str(), nullptr);
  CreateDirectoryW((root + L"\\Workshop").c_str(), nullptr);
  const std::wstring direct = make_file(L"Work\\a.doc", FILE_ATTRIBUTE_READONLY);
  const std::wstring nested = make_file(L"Work\\Sub\\b.doc");
  const std::wstring sibling = make_file(L"Workshop\\c.doc");
  for (const std::wstring& path : {direct, nested, sibling}) ASSERT_EQ(LogFileCreation(path.c_str(), L"MvNsx"), 1);
  ASSERT_EQ(LogFileCreation((root + L"\\Work\\missing.doc").c_str(), L"MvNsx"), 1);

  int failures = -1;
  EXPECT_EQ(DeleteLoggedFilesOf((root + L"\\WORK\\").c_str(), &failures, 0), 1);
  EXPECT_EQ(failures, 0);
  EXPECT_FALSE(exists(direct));
  EXPECT_TRUE(exists(nested));
  EXPECT_TRUE(exists(sibling));

  failures = -1;
  EXPECT_EQ(DeleteLoggedFilesOf((root + L"\\Work").c_str(), &failures, 1), 1);
  EXPECT_EQ(failures, 0);
  EXPECT_FALSE(exists(nested));
  EXPECT_TRUE(exists(sibling));
  // The records of the deleted files went with the compaction.
  EXPECT_EQ(GetIsLoggedFile(nested.c_str(), nullptr), 1);
  EXPECT_EQ(GetIsLoggedFile(sibling.c_str(), nullptr), 0);

  // A file's own path selects that file; a file held open is a failure.
  HANDLE busy = CreateFileW(sibling.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(DeleteLoggedFilesOf(sibling.c_str(), &failures, 0), 1);
  EXPECT_EQ(failures, 1);
  CloseHandle(busy);
  EXPECT_TRUE(exists(sibling));

  EXPECT_EQ(DeleteLoggedFilesOf(nullptr, &failures, 1), 0);
  EXPECT_EQ(DeleteLoggedFilesOf(L"", nullptr, 1), 0);
}

TEST_F(FileCreationLog, DeleteFilesLoggedByFollowsTheFirstRecordOfEachPath) {
  const std::wstring mine = make_file(L"mine.doc");
  const std::wstring theirs = make_file(L"theirs.doc");
  const std::wstring missing = files_->path() + L"\\missing.doc";
  ASSERT_EQ(LogFileCreation(mine.c_str(), L"MvNsx"), 1);
  ASSERT_EQ(LogFileCreation(theirs.c_str(), L"MvOdma"), 1);
  ASSERT_EQ(LogFileCreation(theirs.c_str(), L"MvNsx"), 1);  // second record: not MvNsx's file
  ASSERT_EQ(LogFileCreation(missing.c_str(), L"mvnsx"), 1);
  ASSERT_EQ(LogFileCreation(mine.c_str(), L"MvNsx"), 1);

  int handled = -1;
  EXPECT_EQ(DeleteFilesLoggedBy(L"MvNsx", &handled), S_OK);
  EXPECT_EQ(handled, 2);  // mine, and missing (already gone)
  EXPECT_FALSE(exists(mine));
  EXPECT_TRUE(exists(theirs));

  HANDLE busy = CreateFileW(theirs.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(DeleteFilesLoggedBy(L"MvOdma", &handled), static_cast<HRESULT>(0x80070020));
  EXPECT_EQ(handled, 0);
  CloseHandle(busy);
  EXPECT_EQ(DeleteFilesLoggedBy(L"MvOdma", nullptr), S_OK);
  EXPECT_FALSE(exists(theirs));
  EXPECT_EQ(DeleteFilesLoggedBy(nullptr, &handled), E_POINTER);
}

TEST_F(FileCreationLog, ClearAndUninstall) {
  EXPECT_FALSE(ClearFileCreationLog());  // there is none
  const std::wstring root = files_->path();
  const std::wstring programs = root + L"\\Programs";
  CreateDirectoryW(programs.c_str(), nullptr);
  set_string(HKEY_CURRENT_USER, client_path(L"Location"), L"Programs", programs);
  const std::wstring addin = make_file(L"Programs\\addin.dot");
  const std::wstring download = make_file(L"download.doc");
  ASSERT_EQ(LogFileCreation(addin.c_str(), L"MvNsx"), 1);
  ASSERT_EQ(LogFileCreation(download.c_str(), L"MvNsx"), 1);

  // The data directory holds only the log: it goes with it.
  EXPECT_EQ(CleanUpForUninstall(), 1);
  EXPECT_FALSE(exists(addin));
  EXPECT_TRUE(exists(download));
  EXPECT_FALSE(exists(log_file()));
  EXPECT_FALSE(exists(log_directory()));

  // A data directory that is not empty stays, and the call says so.
  CreateDirectoryW(log_directory().c_str(), nullptr);
  write_file(log_directory() + L"\\keep.txt", "x");
  LogFileCreation(download.c_str(), L"MvNsx");
  EXPECT_EQ(CleanUpForUninstall(), 0);
  EXPECT_FALSE(exists(log_file()));
  // Reading the log creates it, as appending would: the first step leaves a
  // log for the second to delete.
  DeleteFileW((log_directory() + L"\\keep.txt").c_str());
  EXPECT_EQ(CleanUpForUninstall(), 1);
  EXPECT_FALSE(exists(log_directory()));
}

TEST_F(FileCreationLog, FourProcessesAppendingLeaveEveryRecordWhole) {
  HANDLE start = CreateEventW(nullptr, TRUE, FALSE, kStartEvent);
  std::vector<HANDLE> children;
  for (int i = 0; i < kAppenders; ++i) {
    const intptr_t child = run_child_process(kAppendChild, std::to_wstring(i), false);
    ASSERT_NE(child, -1);
    children.push_back(reinterpret_cast<HANDLE>(child));
  }
  Sleep(500);  // let all four reach the start line
  SetEvent(start);
  for (HANDLE child : children) {
    EXPECT_EQ(WaitForSingleObject(child, 60000), WAIT_OBJECT_0);
    DWORD code = 99;
    GetExitCodeProcess(child, &code);
    EXPECT_EQ(code, 0u);
    CloseHandle(child);
  }
  CloseHandle(start);

  const std::string text = read_file(log_file());
  const std::regex line("<<\\+> <TIME=\\d+/\\d+ \\d+:\\d+:\\d+> <PATH=C:\\\\concurrent\\\\(\\d)\\\\file(\\d+)\\.txt> "
                        "<CREATER=Appender(\\d)>>\r\n");
  std::set<std::pair<int, int>> seen;
  size_t whole = 0;
  for (std::sregex_iterator it(text.begin(), text.end(), line), end; it != end; ++it) {
    ASSERT_EQ(static_cast<size_t>(it->position()), whole) << "torn or merged text before record " << seen.size();
    whole += it->length();
    EXPECT_EQ((*it)[1], (*it)[3]);
    seen.insert({std::stoi((*it)[1]), std::stoi((*it)[2])});
  }
  EXPECT_EQ(whole, text.size());
  EXPECT_EQ(seen.size(), static_cast<size_t>(kAppenders * kRecordsPerAppender));
}

TEST_F(FileCreationLog, DeletionsAreTraced) {
  TraceLogFolder trace(0x10002);
  const std::wstring directory = files_->path();
  make_file(L"gone.txt");
  make_file(L"kept.txt");
  ASSERT_EQ(run_child_process(kTraceChild, directory), 0);
  std::string expected_dir(directory.begin(), directory.end());
  const std::string text = trace.read_all();
  EXPECT_NE(text.find("Deletion path: " + expected_dir + "\\gone.txt\nDeleted\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Deletion path: " + expected_dir + "\\kept.txt\nFailed\n"), std::string::npos) << text;
  EXPECT_NE(text.find("DeleteLoggedFile failed to delete '" + expected_dir + "\\kept.txt' (error 32)\n"),
            std::string::npos)
      << text;
}

}  // namespace
}  // namespace mvsup::test
