#pragma once

#include "base/NonCopyable.h"

namespace qro_common {

// Copies single files of the default font-data package into the data
// directory's "FInfo/" folder on demand. Each Extract... operation writes
// one file and tells whether it did; the folders must exist beforehand.
class FontInfoFileExtracter : public qro_base::NonCopyable {
 public:
  virtual ~FontInfoFileExtracter() = default;

  // Reopens the package, after the package file was replaced.
  virtual void Reload() = 0;
  // "Ftable", the font information table.
  virtual bool ExtractFontTable() = 0;
  // "fc", the font chain list.
  virtual bool ExtractFontChain() = 0;
  // "df", the default fonts list.
  virtual bool ExtractDefaultFontsList() = 0;
  // "sf", the script default fonts list.
  virtual bool ExtractScriptDefaultFontsList() = 0;
  // "sf_" + language, the script default fonts list of one language.
  virtual bool ExtractScriptDefaultFontsList(const char* language) = 0;
  // "Fdata/" + number, the data file of one font information.
  virtual void ExtractFontInfoData(int number) = 0;
};

}  // namespace qro_common
