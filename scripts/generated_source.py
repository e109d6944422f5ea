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
