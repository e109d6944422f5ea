#!/usr/bin/env python3
"""Writes docs/PERFORMANCE.md from the JSON output of kelfont_bench.

usage: bench_report.py MEMORY_JSON DISK_JSON MACHINE_TXT [SYNCS_TXT] > docs/PERFORMANCE.md

MEMORY_JSON holds every benchmark, run with its scratch folders on a
memory file system; DISK_JSON the start-up benchmarks again with their
scratch folders on disk. MACHINE_TXT has one "name: value" line per fact
about the machine and the peers' versions; SYNCS_TXT, "name count" lines,
the sync calls of the start-ups on the Android set. Every time is the median of the
repetitions: CPU time for the in-process measurements, and for the start-up
ones the CPU time (user + system) they report themselves.
"""

import json
import sys


def medians(path):
    with open(path) as f:
        data = json.load(f)
    rows = {}
    for b in data["benchmarks"]:
        if b.get("aggregate_name") not in (None, "median"):
            continue
        name = b.get("run_name", b["name"])
        for suffix in ("/manual_time",):
            if name.endswith(suffix):
                name = name[: -len(suffix)]
        name = name.split("/iterations:")[0]
        if b.get("aggregate_name") is None and name in rows:
            continue  # a single run only when there are no aggregates
        rows[name] = b
    return data.get("context", {}), rows


def seconds(b):
    """The time of one iteration in seconds: the manual (CPU) time when the
    benchmark reports its own, else the CPU time."""
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[b.get("time_unit", "ns")]
    manual = "manual_time" in b.get("run_name", b["name"])
    return (b["real_time"] if manual else b["cpu_time"]) * scale


def per_item_ns(b):
    """CPU nanoseconds per item (the rate is items per CPU second)."""
    return 1e9 / b["items_per_second"]


def fmt(value, unit):
    if value != value:
        return "n/a"
    if unit == "ns":
        return f"{value:.2f} ns"
    if unit == "us":
        return f"{value * 1e6:.0f} µs"
    if unit == "ms":
        return f"{value * 1e3:.1f} ms"
    return f"{value:.2f} {unit}"


def android_rows(mem, get, row, w, syncs_path):
    row("7", "Android set, cold start vs `fc-cache -f` (tmpfs)",
        seconds(get(mem, "Android/ColdStart/kelfont")),
        seconds(get(mem, "Android/ColdStart/fc_cache")), "ms", 1.5)
    row("7", "Android set, warm start vs `FcInitLoadConfigAndFonts` (tmpfs)",
        seconds(get(mem, "Android/WarmStart/kelfont")),
        seconds(get(mem, "Android/WarmStart/fontconfig")), "us", 1.0)
    for label, name in (("noto_sans_cjk_jp", "Noto Sans CJK JP"),
                        ("droid_sans_fallback", "Droid Sans Fallback")):
        row("7", f"Android set, first use of {name}: `ReadData` vs FreeType opening it and "
            "reading every mapped character's advance",
            seconds(get(mem, "Android/FaceLoad/kelfont_read_data/" + label)),
            seconds(get(mem, "Android/FaceLoad/freetype_open_mapped_advances/" + label)),
            "us", 1.0)
    res = get(mem, "Android/Memory/first_start_resources")
    peak = res["peak_rss_kib"] / 1024
    w(f"| 7 | Android set, peak resident set of a first start (fc-cache: "
      f"{res['fc_cache_peak_rss_kib'] / 1024:.1f} MiB) | {peak:.1f} MiB | | | ≤ 16 MiB | "
      f"{'yes' if peak <= 16 else 'no'} |")
    share = res["read_kib"] / res["font_kib"]
    w(f"| 7 | Android set, bytes read by a first start against the fonts' size | "
      f"{res['read_kib'] / 1024:.1f} MiB | {res['font_kib'] / 1024:.1f} MiB | {share:.2f}× | "
      f"≤ 1.0× | {'yes' if share <= 1.0 else 'no'} |")
    if syncs_path:
        counts = dict(line.split() for line in open(syncs_path) if line.strip())
        if counts:
            cold, warm = int(counts["kelfont_cold"]), int(counts["kelfont_warm"])
            w(f"| 7 | Android set, sync calls of a first start (fc-cache -f: "
              f"{counts['fc_cache']}) | {cold} | | | ≤ 3 | {'yes' if cold <= 3 else 'no'} |")
            w(f"| 7 | Android set, sync calls of the warm start after it | {warm} | | | 0 | "
              f"{'yes' if warm == 0 else 'no'} |")


def main():
    _, mem = medians(sys.argv[1])
    _, disk = medians(sys.argv[2])
    machine = [line.rstrip("\n") for line in open(sys.argv[3]) if line.strip()]

    def get(rows, name):
        if name not in rows:
            sys.exit(f"bench_report: no result for {name}")
        return rows[name]

    out = []
    w = out.append
    w("# Performance")
    w("")
    w("libkelfont against its peers on the same fonts, the same text and the same machine,")
    w("measured in one run of `scripts/bench.sh` (Google Benchmark, `bench/`). Every figure is")
    w("the median of the repetitions; a ratio is libkelfont's figure divided by the peer's, so")
    w("below 1.0 means libkelfont is faster. Times are CPU time: in-process CPU time for the")
    w("queries and the face load, user + system time for the start-ups (fc-cache sleeps, so its")
    w("wall time means nothing).")
    w("")
    w("| # | Measurement | libkelfont | Peer | Ratio | Goal | Met |")
    w("|---|---|---|---|---|---|---|")

    def row(number, what, ours, peer, unit, goal):
        ratio = ours / peer if peer else float("nan")
        met = "yes" if goal is not None and ratio <= goal else ("no" if goal is not None else "")
        goal_text = f"≤ {goal:.1f}×" if goal is not None else ""
        w(f"| {number} | {what} | {fmt(ours, unit)} | {fmt(peer, unit)} | {ratio:.2f}× | "
          f"{goal_text} | {met} |")

    hb = per_item_ns(get(mem, "HotAdvance/harfbuzz"))
    ft = per_item_ns(get(mem, "HotAdvance/freetype"))
    for door, label in (("kelfont_manager", "`FontManager::GetCharAdvanceRatio`"),
                        ("kelfont_facade", "facade `GetFontCharInfo`")):
        ours = per_item_ns(get(mem, "HotAdvance/" + door))
        row("1", f"Hot advance per character, {label} vs HarfBuzz", ours, hb, "ns", 1.0)
        row("1", f"Hot advance per character, {label} vs FreeType", ours, ft, "ns", None)

    ours = seconds(get(mem, "FaceLoad/kelfont_read_data"))
    row("2", "First use of NanumGothic: `ReadData` vs `FT_New_Face` + `FT_Get_Advances` "
        "(all glyphs)", ours, seconds(get(mem, "FaceLoad/freetype_open_glyph_advances")), "us", 1.0)
    row("2", "… vs the same + a walk of the Unicode map (advance per mapped character)", ours,
        seconds(get(mem, "FaceLoad/freetype_open_mapped_advances")), "us", None)

    row("3", "Cold start: `Initialize` on an empty storage folder vs `fc-cache -f` "
        "(scratch on tmpfs)", seconds(get(mem, "ColdStart/kelfont")),
        seconds(get(mem, "ColdStart/fc_cache")), "ms", 1.0)
    row("3", "… the same with the storage and fontconfig's cache on disk (ext4)",
        seconds(get(disk, "ColdStart/kelfont")), seconds(get(disk, "ColdStart/fc_cache")), "ms",
        None)

    row("4", "Warm start: `Initialize` with a valid cache vs `FcInitLoadConfigAndFonts` "
        "(tmpfs)", seconds(get(mem, "WarmStart/kelfont")),
        seconds(get(mem, "WarmStart/fontconfig")), "us", 1.0)
    row("4", "… the same on disk", seconds(get(disk, "WarmStart/kelfont")),
        seconds(get(disk, "WarmStart/fontconfig")), "us", None)
    synthetic = seconds(get(mem, "WarmStart/kelfont_1000_faces"))
    w(f"| 4 | Warm start over a synthetic table of 1,000 faces | {fmt(synthetic, 'ms')} "
      f"({synthetic * 1e6 / 1000:.2f} µs a face) | | | | |")

    heap = get(mem, "Memory/kelfont_heap_per_char")
    per_char = heap["bytes_per_char"]
    w(f"| 5 | Heap per mapped character of a loaded face (NanumGothic: "
      f"{heap['heap_bytes']:.0f} bytes for {heap['mapped_chars']:.0f} characters) | "
      f"{per_char:.2f} bytes | | | ≤ 3 bytes | {'yes' if per_char <= 3 else 'no'} |")
    rss = get(mem, "Memory/kelfont_31_faces_peak_rss")
    w(f"| 5 | Peak resident set of a manager with 31 CJK-sized faces loaded (same manager "
      f"with none loaded: {rss['idle_peak_rss_kib'] / 1024:.1f} MiB; heap kept per loaded face: "
      f"{rss['heap_per_face_kib']:.1f} KiB) | {rss['peak_rss_kib'] / 1024:.1f} MiB | | | | |")
    for name, what in (("visible", "`IsVisibleChar` (read from the loaded face)"),
                       ("confirm", "`ConfirmVisibleChar` (cached)"),
                       ("kerning", "`GetKerningWidth` of each pair")):
        ours = per_item_ns(get(mem, "HotQueries/kelfont_" + name))
        w(f"| 6 | Per character of the same text, {what} | {fmt(ours, 'ns')} | | | | |")
    if "Android/ColdStart/kelfont" in mem:
        android_rows(mem, get, row, w, sys.argv[4] if len(sys.argv) > 4 else None)
    # Shaped runs need the Android fonts (KELFONT_ANDROID_FONTS); left out without them.
    shaped = {name: b for name, b in mem.items()
              if name.startswith("ShapedRun/") and not b.get("error_occurred")}
    if len(shaped) == 4:
        row("8", "Shaped runs (locale words, emoji; Android fonts): a cached word vs the "
            "per-character path, per UTF-16 unit",
            per_item_ns(shaped["ShapedRun/kelfont_cached_words"]),
            per_item_ns(shaped["ShapedRun/kelfont_per_character"]), "ns", 2.0)
        row("8", "… an uncached run vs `hb_shape` of the same sub-runs + the fallback road",
            per_item_ns(shaped["ShapedRun/kelfont_uncached"]),
            per_item_ns(shaped["ShapedRun/harfbuzz_subruns_and_road"]), "ns", 1.2)
    w("")

    w("## What is measured")
    w("")
    w("1. **Hot advance**: the advance of every character of a 1,000,000-character text of")
    w("   Latin words and Hangul words (2,500 distinct syllables) in NanumGothic, every key")
    w("   asked once before timing. HarfBuzz: `hb_font_get_nominal_glyph` +")
    w("   `hb_font_get_glyph_h_advance` on an hb-ot font of the file; FreeType:")
    w("   `FT_Get_Char_Index` + `FT_Get_Advance(FT_LOAD_NO_SCALE)`.")
    w("2. **First use of a face**: `FontInfoSerializer::ReadData` of NanumGothic's data file")
    w("   (advances of its 17,666 stored characters and its kerning pairs), releasing them")
    w("   again; FreeType: `FT_New_Face`, `FT_Get_Advances` over every glyph, `FT_Done_Face`.")
    w("3. **Cold start**: extracter, manager and `Initialize()` on an empty storage folder over")
    w("   the real font folders, with a package that holds the lists and an empty table, so")
    w("   every face is analysed and its data file written; `fc-cache -f` with a configuration")
    w("   naming the same folders and an empty cache folder of its own (`FONTCONFIG_FILE`), so")
    w("   the host's caches are not touched.")
    w("4. **Warm start**: the same start-up over the cache the cold start wrote;")
    w("   `FcInitLoadConfigAndFonts()` with that configuration and its cache built. The")
    w("   synthetic table holds 1,000 faces known by metrics only, one font folder.")
    w("5. **Memory**: heap in use (`mallinfo2`) before and after `ReadData`, per stored")
    w("   character; the peak resident set (`ru_maxrss`) of a child process that starts a")
    w("   manager over a cache of 31 copies of NanumGothic's data under distinct names and")
    w("   asks one character of each.")
    w("6. **Other queries** over the text of 1, in the manager, the face loaded: whether")
    w("   NanumGothic maps the character, the font and character that show it, and the kerning")
    w("   of each character with the one before.")
    w("")
    w("7. **The Android set**: the files a recent Android device ships in `/system/fonts/`,")
    w("   assembled from Debian's packages by `scripts/android-fonts.sh` (Noto Sans and Serif for")
    w("   every script, the Noto CJK collections, Noto Color Emoji, Roboto, Droid Sans Fallback,")
    w("   Inter's variable font), named by `KELFONT_ANDROID_FONTS`: the start-ups of 3 and 4 on")
    w("   that folder alone; the first use of Noto Sans CJK JP (face 0 of")
    w("   NotoSansCJK-Regular.ttc) and of Droid Sans Fallback against `FT_New_Face`,")
    w("   `FT_Get_Advances` and a walk of the Unicode map; the peak resident set (`ru_maxrss`)")
    w("   and the bytes read (`rchar` of `/proc/self/io`) of a first start in a child process of")
    w("   its own, fc-cache's peak the same way; and the sync calls (`strace -c`) of a first")
    w("   start, of the warm start after it, and of `fc-cache -f`.")
    w("8. **Shaped runs** (`FontManager::MeasureRun`) over day and month names of glibc's")
    w("   locale sources and emoji sequences, Roboto requested, in the Android set: words")
    w("   already in the word cache against the per-character path over the same text, and")
    w("   uncached runs against HarfBuzz's `hb_shape` of the same sub-runs plus the fallback")
    w("   road that chooses their fonts.")
    w("")
    w("Scratch folders (storage, fontconfig's cache) live on a memory file system for the")
    w("main run, so that the start-ups measure the libraries rather than the disk's handling")
    w("of new files; the start-ups are run a second time with them on disk. A first start")
    w("writes one data file per face (about 90 here) where fc-cache writes one cache file per")
    w("folder, so on disk the file system's cost of creating files weighs on libkelfont more.")
    w("")
    w("## What makes these numbers")
    w("")
    w("- **Advances from the horizontal metrics, exactly as loading gives them.** The analyzer")
    w("  reads a face's `hmtx` in one piece instead of loading each glyph (0.2–8 µs a glyph).")
    w("  Where loading would differ it follows the glyph data itself, read once in glyph order:")
    w("  a TrueType composite flagged USE_MY_METRICS takes its component's advance (Droid Sans")
    w("  Fallback stores 0 for some), and a glyph whose data would not load is dropped; what it")
    w("  cannot vouch for it loads after all (on the Android set only Noto Color Emoji's bitmap")
    w("  glyphs). Faces with variations load their glyphs. A test compares both ways on every")
    w("  face of the installed fonts, the Android set and a generated font of such composites.")
    w("  Kerning is read unscaled (the same numbers as at one pixel per unit, without sizing the")
    w("  face), and the character map is walked once per face for the default-font map and the")
    w("  advances.")
    w("- **A first start that reads little and syncs once.** Faces are read on demand through")
    w("  the file descriptor (no copy of the file, no mapping of a file that may change): the")
    w("  tables the analysis needs, a collection's shared tables once per face. Data files,")
    w("  the default-font map and extracted package entries are written unsynced; one")
    w("  file-system sync puts them on disk before the table, the commit point, is renamed into")
    w("  place, and its folder is synced after. A start that finds its cache valid syncs")
    w("  nothing, and an extracted entry already in place is not written again.")
    w("- **Dense answer caches.** The per-character caches of both doors keep, per font and")
    w("  style, 256-entry pages of the basic plane: a cached answer is four dependent loads.")
    w("  Other keys (supplementary planes, negative font indexes) use a hash map. First insert")
    w("  wins and nothing is removed, as before.")
    w("- **Compact loaded faces.** A block keeps a presence bit per code and one advance while")
    w("  all its characters share it (Hangul and ideographs of CJK fonts), else two bytes per")
    w("  character plus a count per 64 codes; the old form kept two bytes for every code of a")
    w("  block, mapped or not (a CJK font maps a quarter of the ideograph block).")
    w("- **Thread safety at no cost to cache hits.** Every query may run on many threads; a")
    w("  cached answer is read with plain loads (atomic slots written once, tables published")
    w("  whole) in a small function, the uncached rest kept out of line. Queries that read a")
    w("  face's data without the lock count themselves in on a striped counter (an atomic")
    w("  increment and decrement), so that dropped data is deleted only when nobody reads it.")
    w("  Measured against the commit before, in one run: hot advance 1.00× (manager) and 1.04×")
    w("  (facade), `ConfirmVisibleChar` 0.59× (its hash map became a dense cache),")
    w("  `GetKerningWidth` 1.10×, `IsVisibleChar` 1.10–1.19× (2–3 ns of read section on a 15 ns")
    w("  query).")
    w("- **Block reads.** Data files and the default font information are read in blocks")
    w("  instead of one virtual call per byte; the bytes on disk are unchanged.")
    w("")
    w("## Machine")
    w("")
    for line in machine:
        w(f"- {line}")
    w("")
    w("## How to reproduce")
    w("")
    w("    bash scripts/bench.sh          # KELFONT_BENCH_REPETITIONS=N (default 5)")
    w("    bash scripts/android-fonts.sh /tmp/android-fonts")
    w("    KELFONT_ANDROID_FONTS=/tmp/android-fonts bash scripts/bench.sh   # with the rows of 7")
    w("")
    w("It installs what is missing, builds `build-bench/` (Release), runs")
    w("`build-bench/bench/kelfont_bench` twice (everything with scratch folders in memory, then")
    w("the start-ups on disk) and writes this file. One benchmark alone:")
    w("`build-bench/bench/kelfont_bench --benchmark_filter=HotAdvance`. The test suite runs")
    w("every benchmark once as `kelfont_bench --smoke` (ctest `kelfont_bench_smoke`).")
    w("Debian's Google Benchmark library announces that it was built as DEBUG; that concerns")
    w("its bookkeeping between iterations, which is negligible next to the timed work (a")
    w("million characters, a whole face or a whole start-up per iteration).")
    print("\n".join(out))


if __name__ == "__main__":
    main()
