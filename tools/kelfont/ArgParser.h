#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace kelfont_tool {

// Command-line options of one subcommand: flags (--bold), options with one
// value (--font NAME, --font=NAME), repeatable options (--fonts DIR, given
// once per value, or with `greedy` taking every following argument up to
// the next option: --fonts A B C), and positional arguments. "-h" and
// "--help" ask for the help text; "--" ends the options. Parse() never
// exits: the caller prints Error() or Help() and picks the exit code.
class ArgParser {
 public:
  ArgParser(std::string command, std::string summary);

  void AddFlag(const std::string& name, const std::string& help);
  // `shortName` is an optional one-letter alias ("o" for -o).
  void AddValue(const std::string& name, const std::string& metavar, const std::string& help,
                const std::string& shortName = std::string());
  void AddList(const std::string& name, const std::string& metavar, const std::string& help,
               bool greedy);
  // Positional arguments: at least `min`, at most `max` (0: no limit).
  void SetPositional(const std::string& metavar, const std::string& help, std::size_t min,
                     std::size_t max);
  // A paragraph printed at the end of the help text.
  void SetEpilog(const std::string& text) { epilog_ = text; }

  // False on an unknown option, a missing value, a repeated single-value
  // option or a wrong number of positional arguments; Error() says which.
  // A help request parses as true with HelpRequested() set.
  bool Parse(const std::vector<std::string>& args);

  bool HelpRequested() const { return help_; }
  const std::string& Error() const { return error_; }
  std::string Help() const;

  bool Has(const std::string& name) const;
  // The value of a single-value option; `fallback` when not given.
  std::string Value(const std::string& name, const std::string& fallback = std::string()) const;
  // Every value of a repeatable option, in order.
  const std::vector<std::string>& Values(const std::string& name) const;
  const std::vector<std::string>& Positional() const { return positional_; }

 private:
  enum class Kind { Flag, Value, List };
  struct Option {
    std::string name;
    std::string shortName;
    std::string metavar;
    std::string help;
    Kind kind = Kind::Flag;
    bool greedy = false;
  };

  const Option* Find(const std::string& name) const;
  const Option* FindShort(const std::string& name) const;
  bool Fail(const std::string& message);

  std::string command_;
  std::string summary_;
  std::string epilog_;
  std::vector<Option> options_;
  std::string positionalMetavar_;
  std::string positionalHelp_;
  std::size_t positionalMin_ = 0;
  std::size_t positionalMax_ = 0;
  bool help_ = false;
  std::string error_;
  std::map<std::string, std::vector<std::string>> values_;
  std::vector<std::string> positional_;
};

}  // namespace kelfont_tool
