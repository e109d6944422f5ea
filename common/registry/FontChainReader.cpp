#include "common/registry/FontChainReader.h"

#include "base/BufferedInputStream.h"
#include "base/FileInputStream.h"
#include "base/FileUtils.h"
#include "common/font_info/FontInfo.h"
#include "common/registry/DataFileNames.h"
#include "common/registry/FontListLine.h"
#include "common/registry/FontTable.h"

namespace qro_common {

FontChainReader::FontChainReader(std::string& dataDirectory) : dataDirectory_(dataDirectory) {}

FontChainReader::~FontChainReader() { delete block_; }

bool FontChainReader::Read(FontTable& table, std::map<int, std::vector<int>*>& chains) {
  qro_base::confirmFilePathExists(dataDirectory_.c_str());
  std::string path = dataDirectory_ + getFontInfoStorageName() + getFontChainName();
  if (!qro_base::isFileExists(path.c_str())) return false;

  table_ = &table;
  chains_ = &chains;
  auto* file = new qro_base::FileInputStream(path);
  if (file->IsOpen()) {
    qro_base::BufferedInputStream in(file, 32768);
    std::string line;
    for (int byte = in.Read(); byte >= 0; byte = in.Read()) {
      if (byte != '\n') {
        line += static_cast<char>(byte);
        continue;
      }
      if (isBlankListLine(line)) line.clear();
      BuildFontChain(line);
      line.clear();
    }
    // The end of the file does not close the open block.
    if (!isBlankListLine(line)) BuildFontChain(line);
    in.Close();
  } else {
    delete file;
  }
  table_ = nullptr;
  chains_ = nullptr;
  delete block_;
  block_ = nullptr;
  return true;
}

void FontChainReader::BuildFontChain(std::string& line) {
  if (table_ == nullptr) return;
  if (isBlankListLine(line)) {
    CloseBlock();
    return;
  }
  if (isCommentListLine(line)) {
    line.clear();
    return;
  }

  if (block_ == nullptr) block_ = new std::vector<int>();
  int index = table_->GetFontIndex(line);
  if (index < 0) {
    auto* info = new FontInfo();
    info->SetFontName(new std::string(line));
    index = table_->RegisterFontInfo(info, false);
  }
  block_->push_back(index);
  line.clear();
}

void FontChainReader::CloseBlock() {
  if (block_ == nullptr) return;
  std::vector<int>* block = block_;
  block_ = nullptr;
  if (block->size() < 2 || chains_->count(block->front()) != 0) {
    delete block;
    return;
  }
  int key = block->front();
  block->erase(block->begin());
  chains_->emplace(key, block);
}

}  // namespace qro_common
