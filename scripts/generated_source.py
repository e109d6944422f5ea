"""Writing a generated source file, or checking that it is up to date."""

import sys


def write_or_check(path, text, check, tool):
    """With check, returns 1 (and says so) when `path` differs from `text`;
    otherwise writes `text` to `path`. Returns the exit status."""
    if check:
        try:
            with open(path, encoding="utf-8") as f:
                current = f.read()
        except OSError:
            current = None
        if current != text:
            sys.stderr.write("%s: %s is not up to date\n" % (tool, path))
            return 1
        return 0
    with open(path, "w", encoding="utf-8") as f:
        f.write(text)
    return 0


def wrapped(items, width=79):
    """`items` (strings that start with a space) joined into lines of at most
    `width` characters, each line indented by one space."""
    lines = []
    line = " "
    for item in items:
        if len(line) + len(item) > width:
            lines.append(line)
            line = " "
        line += item
    lines.append(line)
    return lines


def bmp_run_table(what, struct, field, array, expand, table, runs):
    """C++ lines of a basic-plane table kept as runs: the run struct, the
    array of (first code, value) runs, the constexpr function expanding it
    and the table it evaluates to. `what` names the table in the comment."""
    lines = [
        "// %s as runs: each run starts at `first` and lasts until the next" % what,
        "// run starts; the last run ends at U+FFFF.",
        "struct %s {" % struct,
        "  unsigned short first;",
        "  unsigned char %s;" % field,
        "};",
        "",
        "constexpr %s %s[] = {" % (struct, array),
    ]
    lines += wrapped([" {0x%04X, %d}," % (first, value) for first, value in runs])
    lines += [
        "};",
        "",
        "constexpr std::array<unsigned char, 0x10000> %s() {" % expand,
        "  std::array<unsigned char, 0x10000> table{};",
        "  constexpr unsigned runCount = sizeof(%s) / sizeof(%s[0]);" % (array, array),
        "  for (unsigned i = 0; i < runCount; ++i) {",
        "    unsigned end = i + 1 < runCount ? %s[i + 1].first : 0x10000u;" % array,
        "    for (unsigned cp = %s[i].first; cp < end; ++cp) table[cp] = %s[i].%s;"
        % (array, array, field),
        "  }",
        "  return table;",
        "}",
        "",
        "// Evaluated by the compiler: the table is constant data, ready before any",
        "// code runs.",
        "constexpr std::array<unsigned char, 0x10000> %s = %s();" % (table, expand),
    ]
    return lines
