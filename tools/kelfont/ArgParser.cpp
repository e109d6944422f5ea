#include "tools/kelfont/ArgParser.h"

#include <sstream>
#include <utility>

namespace kelfont_tool {

namespace {

bool isOptionLike(const std::string& arg) { return arg.size() > 1 && arg[0] == '-'; }

}  // namespace

ArgParser::ArgParser(std::string command, std::string summary)
    : command_(std::move(command)), summary_(std::move(summary)) {}

void ArgParser::AddFlag(const std::string& name, const std::string& help) {
  options_.push_back({name, std::string(), std::string(), help, Kind::Flag, false});
}

void ArgParser::AddValue(const std::string& name, const std::string& metavar,
                         const std::string& help, const std::string& shortName) {
  options_.push_back({name, shortName, metavar, help, Kind::Value, false});
}

void ArgParser::AddList(const std::string& name, const std::string& metavar,
                        const std::string& help, bool greedy) {
  options_.push_back({name, std::string(), metavar, help, Kind::List, greedy});
}

void ArgParser::SetPositional(const std::string& metavar, const std::string& help,
                              std::size_t min, std::size_t max) {
  positionalMetavar_ = metavar;
  positionalHelp_ = help;
  positionalMin_ = min;
  positionalMax_ = max;
}

const ArgParser::Option* ArgParser::Find(const std::string& name) const {
  for (const Option& option : options_) {
    if (option.name == name) return &option;
  }
  return nullptr;
}

const ArgParser::Option* ArgParser::FindShort(const std::string& name) const {
  for (const Option& option : options_) {
    if (!option.shortName.empty() && option.shortName == name) return &option;
  }
  return nullptr;
}

bool ArgParser::Fail(const std::string& message) {
  error_ = command_ + ": " + message;
  return false;
}

bool ArgParser::Parse(const std::vector<std::string>& args) {
  help_ = false;
  error_.clear();
  values_.clear();
  positional_.clear();
  bool optionsEnded = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (optionsEnded || !isOptionLike(arg)) {
      positional_.push_back(arg);
      continue;
    }
    if (arg == "--") {
      optionsEnded = true;
      continue;
    }
    if (arg == "-h" || arg == "--help") {
      help_ = true;
      return true;
    }
    const Option* option = nullptr;
    std::string name;
    std::string inlineValue;
    bool hasInlineValue = false;
    if (arg.compare(0, 2, "--") == 0) {
      const std::size_t equals = arg.find('=');
      name = arg.substr(2, equals == std::string::npos ? std::string::npos : equals - 2);
      if (equals != std::string::npos) {
        inlineValue = arg.substr(equals + 1);
        hasInlineValue = true;
      }
      option = Find(name);
    } else {
      name = arg.substr(1);
      option = FindShort(name);
    }
    if (option == nullptr) return Fail("unknown option " + arg + " (see --help)");
    std::vector<std::string>& values = values_[option->name];
    if (option->kind == Kind::Flag) {
      if (hasInlineValue) return Fail("--" + option->name + " takes no value");
      values.push_back(std::string());
      continue;
    }
    if (option->kind == Kind::Value && !values.empty()) {
      return Fail("--" + option->name + " given twice");
    }
    if (hasInlineValue) {
      if (inlineValue.empty()) return Fail("--" + option->name + " needs a " + option->metavar);
      values.push_back(inlineValue);
      continue;
    }
    if (i + 1 >= args.size() || isOptionLike(args[i + 1])) {
      return Fail("--" + option->name + " needs a " + option->metavar);
    }
    values.push_back(args[++i]);
    if (option->greedy) {
      while (i + 1 < args.size() && !isOptionLike(args[i + 1])) values.push_back(args[++i]);
    }
  }
  if (positional_.size() < positionalMin_) {
    return Fail(positionalMetavar_.empty() ? std::string("missing argument")
                                           : "missing " + positionalMetavar_ + " (see --help)");
  }
  if (positionalMax_ != 0 ? positional_.size() > positionalMax_
                          : (positionalMetavar_.empty() && !positional_.empty())) {
    return Fail("unexpected argument '" + positional_[positionalMax_] + "' (see --help)");
  }
  return true;
}

bool ArgParser::Has(const std::string& name) const {
  auto it = values_.find(name);
  return it != values_.end() && !it->second.empty();
}

std::string ArgParser::Value(const std::string& name, const std::string& fallback) const {
  auto it = values_.find(name);
  return it == values_.end() || it->second.empty() ? fallback : it->second.front();
}

const std::vector<std::string>& ArgParser::Values(const std::string& name) const {
  static const std::vector<std::string> kNone;
  auto it = values_.find(name);
  return it == values_.end() ? kNone : it->second;
}

std::string ArgParser::Help() const {
  std::ostringstream out;
  out << "Usage: kelfont " << command_;
  if (!options_.empty()) out << " [options]";
  if (!positionalMetavar_.empty()) out << ' ' << positionalMetavar_;
  out << "\n\n" << summary_ << "\n\nOptions:\n";
  auto line = [&out](const std::string& left, const std::string& help) {
    out << "  " << left;
    if (left.size() < 24) {
      out << std::string(24 - left.size(), ' ');
    } else {
      out << "\n" << std::string(26, ' ');
    }
    out << help << '\n';
  };
  for (const Option& option : options_) {
    std::string left = option.shortName.empty() ? "" : "-" + option.shortName + ", ";
    left += "--" + option.name;
    if (option.kind != Kind::Flag) left += " " + option.metavar + (option.greedy ? "..." : "");
    line(left, option.help + (option.kind == Kind::List && !option.greedy ? " (repeatable)" : ""));
  }
  line("-h, --help", "show this help and exit");
  if (!positionalMetavar_.empty() && !positionalHelp_.empty()) {
    out << "\nArguments:\n";
    line(positionalMetavar_, positionalHelp_);
  }
  if (!epilog_.empty()) out << '\n' << epilog_ << '\n';
  return out.str();
}

}  // namespace kelfont_tool
