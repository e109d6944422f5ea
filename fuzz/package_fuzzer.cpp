// The default package: both zip back ends list and read every entry, and
// the extracter copies the entries it knows into a data folder.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/FileUtils.h"
#include "base/ZipEntry.h"
#include "base/ZipEntryInputStream.h"
#include "base/ZipFile.h"
#include "fuzz/FuzzSupport.h"
#include "native/DefaultFontInfoFileExtracter.h"

namespace {

// Reads every entry of the archive to its end (at most 1 MiB each).
void readEntries(const std::string& path, bool useZZip) {
  qro_base::ZipFile zip(path.c_str(), useZZip);
  std::vector<char> buffer(4096);
  for (const qro_base::ZipEntry* entry : zip.GetEntries()) {
    qro_base::ZipEntryInputStream in(zip, entry->GetName().c_str());
    if (!in.IsOpen()) continue;
    unsigned total = 0;
    while (total < (1u << 20)) {
      int got = in.Read(buffer.data(), static_cast<unsigned>(buffer.size()));
      if (got <= 0) break;
      total += static_cast<unsigned>(got);
    }
    in.Read();
    in.Close();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qro_base::setLogHook([](int, const char*, const char*, void*) {}, nullptr);
  const std::string package = kelfont_fuzz::scratch() + "package/";
  const std::string storage = kelfont_fuzz::scratch() + "storage/";
  static const bool folders = qro_base::confirmFilePathExists(package.c_str()) &&
                              qro_base::confirmFilePathExists((storage + "FInfo/Fdata").c_str());
  if (!folders || !kelfont_fuzz::writeWhole(package + "qrfont.zip", data, size)) return 0;

  readEntries(package + "qrfont.zip", true);
  readEntries(package + "qrfont.zip", false);

  qro_ni::DefaultFontInfoFileExtracter extracter(storage, package);
  extracter.ExtractFontTable();
  extracter.ExtractFontChain();
  extracter.ExtractDefaultFontsList();
  extracter.ExtractScriptDefaultFontsList();
  extracter.ExtractScriptDefaultFontsList("ko-KR");
  for (int number = 0; number < 4; ++number) extracter.ExtractFontInfoData(number);
  extracter.Extract("../escape");
  extracter.Reload();
  extracter.ExtractFontTable();
  return 0;
}
