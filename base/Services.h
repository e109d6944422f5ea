#pragma once
// Service objects a host may install in the Environment. The library
// declares them only; it implements none of them.

namespace qro_base {

class IResourceLoader {
 public:
  virtual ~IResourceLoader() = default;
};
class ICharacterAttributes {
 public:
  virtual ~ICharacterAttributes() = default;
};
class INumberFormatter {
 public:
  virtual ~INumberFormatter() = default;
};
class IDateFormatter {
 public:
  virtual ~IDateFormatter() = default;
};
class ICalendarFactory {
 public:
  virtual ~ICalendarFactory() = default;
};
class IBreakIterator {
 public:
  virtual ~IBreakIterator() = default;
};
class IMemoryChecker {
 public:
  virtual ~IMemoryChecker() = default;
};

}  // namespace qro_base
