#include "common/registry/DefaultFontsReader.h"

#include "base/BufferedInputStream.h"
#include "base/FileInputStream.h"
#include "base/FileUtils.h"
#include "common/registry/DataFileNames.h"
#include "common/registry/FontListLine.h"

namespace qro_common {
namespace {

constexpr int kMaxGroups = 5;

}  // namespace

DefaultFontsReader::DefaultFontsReader(std::string& dataDirectory)
    : path_(dataDirectory + getFontInfoStorageName() + getDefaultFontsName()) {
  qro_base::confirmFilePathExists(dataDirectory.c_str());
}

bool DefaultFontsReader::IsFileExists() const { return qro_base::isFileExists(path_.c_str()); }

std::vector<int>* DefaultFontsReader::Read(FontTable& table) {
  if (!IsFileExists()) return nullptr;
  auto* result = new std::vector<int>();
  auto* file = new qro_base::FileInputStream(path_);
  if (!file->IsOpen()) {
    delete file;
    return result;
  }
  qro_base::BufferedInputStream in(file, 32768);

  bool found = false;          // the current group has its font
  bool previousBlank = false;  // the line before was blank
  int groupsEnded = 0;
  bool stopped = false;
  std::string line;
  auto takeName = [&]() {
    if (isCommentListLine(line) || found) return;
    int index = availableFontIndex(table, line);
    if (index < 0) return;
    result->push_back(index);
    found = true;
  };

  for (int byte = in.Read(); byte >= 0; byte = in.Read()) {
    if (byte == '\r') continue;
    if (byte != '\n') {
      line += static_cast<char>(byte);
      continue;
    }
    if (!isBlankListLine(line)) {
      previousBlank = false;
      takeName();
    } else if (!previousBlank) {
      if (++groupsEnded >= kMaxGroups) {
        stopped = true;
        break;
      }
      previousBlank = true;
      found = false;
    }
    line.clear();
  }
  if (!stopped && !isBlankListLine(line)) takeName();
  in.Close();
  return result;
}

}  // namespace qro_common
