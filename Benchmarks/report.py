"""Runs the measuring programs in a folder and makes a page of what they say: report.py FOLDER [--short]"""

import json
import os
import platform
import statistics
import subprocess
import sys

folder = sys.argv[1]
short = "--short" in sys.argv[2:]
page = "Docs/benchmarks.md"
plot = "Docs/images/files.svg"


def run(program, *arguments, mayFail=False):
    print("   ", program, *arguments, file=sys.stderr, flush=True)
    command = [os.path.join(folder, program), *map(str, arguments)]
    return subprocess.run(command, check=not mayFail, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout


def figures(program, *arguments):
    pairs = (line.split("\t") for line in run(program, *arguments).splitlines())
    return {name: float(value) for name, value in pairs}


def repeated(times, *commands):
    """The median of each figure of each command over several runs, in turns: a machine is not always equally fast."""
    rounds = [[figures(*command) for command in commands] for _ in range(1 if short else times)]
    return [{name: statistics.median(run[name] for run in runs) for name in runs[0]} for runs in zip(*rounds)]


def google(program, pattern=".", repetitions=5, inTurns=False):
    """Nanoseconds by name; medians of several repetitions."""
    options = ["--benchmark_format=json", "--benchmark_filter=" + pattern]
    if short:
        options.append("--benchmark_min_time=0.01")
    else:
        options += ["--benchmark_repetitions=" + str(repetitions), "--benchmark_report_aggregates_only=true"]
        options.append(f"--benchmark_enable_random_interleaving={str(inTurns).lower()}")
    units = {"ns": 1, "us": 1e3, "ms": 1e6}
    entries = json.loads(run(program, *options))["benchmarks"]
    if any(entry.get("error_occurred") for entry in entries):
        sys.exit("a measurement in " + program + " failed")
    times = {}
    for entry in entries:
        if short or entry.get("aggregate_name") == "median":
            real = "/real_time" in entry["name"]
            name = entry["run_name"].replace("/real_time", "")
            times[name] = entry["real_time" if real else "cpu_time"] * units[entry["time_unit"]]
    return times


goals = []


def goal(what, figure, limit, unit=""):
    """Notes whether a figure is no more than its limit."""
    goals.append((what, f"{figure:.3g}{unit}", f"at most {limit:g}{unit}", "met" if figure <= limit else "NOT MET"))


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + " --- |" * len(head)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def milliseconds(time):
    return f"{time / 1e6:.3g} ms" if time >= 1e5 else f"{time / 1e3:.3g} us" if time >= 1e3 else f"{time:.3g} ns"


def machine():
    with open("/proc/cpuinfo") as file:
        model = next((line.split(":")[1].strip() for line in file if line.startswith("model name")), "?")
    def version(*command):
        return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()[0]
    return [
        f"- processor: {model}, {os.cpu_count()} cores; {platform.system()} {platform.release()}",
        f"- {version('c++', '--version')}; Qt {version('pkg-config', '--modversion', 'Qt5Core')}; "
        f"{version('dbus-daemon', '--version')}",
    ]


def delivery():
    rows = []
    for participants in (3, 30):
        times = figures("BusBenchmark", "latency", participants, 2 if short else 60)
        rows.append([participants] + [f"{times[name]:.1f}" for name in
                    ("mean", "median", "p99", "worst", "least mean of a run", "largest mean of a run")])
        goal(f"delivery, {participants} participants, mean", times["mean"], 33, " ms")
        goal(f"delivery, {participants} participants, p99", times["p99"], 66, " ms")
    return ("## Delivery\n\nFrom `Say` to `OnMessage` over three processes, in milliseconds. Three ticks of 20 ms lie on "
            "the way: 30 ms in the mean, 60 at most.\nWithin one run the ticks of the three processes keep their "
            "distance, so the mean of a run depends on how they fell;\nhence 60 runs of 10 messages, each with new "
            "processes.\n\n" +
            table(["participants", "mean", "median", "p99", "worst", "least mean of a run", "largest mean of a run"],
                  rows))


def routing():
    rows = []
    seconds = 2 if short else 20
    for senders in (1, 8, 32):
        rates = figures("BusBenchmark", "routing", senders, seconds)
        rows.append([senders, f"{rates['least rate']:.2f}", f"{rates['mean rate']:.2f}",
                     f"{rates['largest rate']:.2f}", f"{rates['failed']:.0f}", f"{rates['server us per message']:.1f}"])
        goal(f"routing, {senders} senders, distance of the worst from 50 a second",
             max(50 - rates["least rate"], rates["largest rate"] - 50) / 50 * 100, 2, " %")
    busiest = rates["server us per message"]
    seconds = 1 if short else 5
    peers = [("PeersBenchmark", "dbus", seconds)]
    if os.path.exists(os.path.join(folder, "ObjectsBenchmark")):
        peers.append(("ObjectsBenchmark", seconds))
    dbus, *objects = repeated(3, *peers)
    daemon = dbus["daemon us per call and reply"]
    peerRows = [["session bus daemon (QtDBus at both ends)", f"{daemon:.1f}", f"{busiest / daemon:.2f}x"]]
    name = "Qt Remote Objects, the source (no process between)"
    for source in (run["source us per call and reply"] for run in objects):
        peerRows.append([name, f"{source:.1f}", f"{busiest / source:.2f}x"])
    if not objects:
        peerRows.append([name, "not on this system", ""])
    goal("server's processor time per routed message, beside a D-Bus daemon's for a call and its reply",
         busiest / daemon, 1, "x")
    return ("## Routing\n\nEvery sender has a recipient of its own and always something to say, 64 bytes at a time. A client "
            "gets one\nmessage through in a tick, 50 a second. The server's processor time is all of it, divided by the "
            "messages:\nin, out, result, and the ticks in which nothing came.\n\n" +
            table(["senders", "least rate", "mean rate", "largest rate", "not OK", "server, us per message"], rows) + "\n" +
            table(["64 bytes there and back", "us of processor time", "our server, 32 senders, beside it"],
                  peerRows))


def idling():
    seconds = 2 if short else 6
    timers, watching, *ours = repeated(5, ("PeersBenchmark", "timers", seconds), ("PeersBenchmark", "timers", seconds, 33),
                                       ("BusBenchmark", "idle", 2, seconds), ("BusBenchmark", "idle", 33, seconds))
    rows = [["two timers of 20 ms, nothing else", f"{timers['ms per s']:.2f}", "1x", f"{timers['wake-ups per s']:.0f}"]]
    rows.append(["the same, watching 33 silent sockets", f"{watching['ms per s']:.2f}",
                 f"{watching['ms per s'] / timers['ms per s']:.2f}x", f"{watching['wake-ups per s']:.0f}"])
    for costs, what, name in zip(ours, ("participant", "server"), ("a participant", "a server, 32 others")):
        ratio = costs[what + " ms per s"] / timers["ms per s"]
        rows.append([name, f"{costs[what + ' ms per s']:.2f}", f"{ratio:.2f}x", f"{costs[what + ' wake-ups per s']:.0f}"])
        goal(f"idle, {name}, processor time beside two timers", ratio, 1.5, "x")
        goal(f"idle, {name}, wake-ups beside two timers", costs[what + " wake-ups per s"] / timers["wake-ups per s"],
             1.5, "x")
    return "## Doing nothing\n\n" + table(["process", "ms of processor time a second", "ratio", "wake-ups a second"], rows)


def codec():
    times = google("CodecBenchmark", inTurns=True)
    rows = []
    for size in (64, 4096, 1 << 20):
        ours, bare, copies = (times[f"{name}/{size}"]
                              for name in ("MakeAndReadBack", "TwoChecksums", "TwoChecksumsOfCopies"))
        rows.append([f"{size:,}", milliseconds(ours), milliseconds(bare), f"{ours / bare:.3f}x", milliseconds(copies),
                     f"{ours / copies:.3f}x"])
        if size >= 4096:
            goal(f"packet of {size:,} bytes, made and read back, beside its two checksums", ours / bare, 1.15, "x")
    return ("## Packets\n\nA packet made and read back, beside the two checksums of its body that this takes "
            "(`qChecksum`), and beside the same of\ntwo copies of it: no packet can be made and read without these.\n\n" +
            table(["bytes in the body", "made and read back", "two checksums", "ratio", "of two copies", "ratio"], rows))


def draw(series):
    """A plot with both axes logarithmic; series: name, colour, [(count, ns)]."""
    import math
    width, height, left, bottom = 640, 360, 70, 50
    xs = [count for _, _, points in series for count, _ in points]
    ys = [time for _, _, points in series for _, time in points]
    low, high = math.floor(math.log10(min(ys))), math.ceil(math.log10(max(ys)))
    first, last = math.log10(min(xs)), math.log10(max(xs))

    def place(count, time):
        x = left + (math.log10(count) - first) / (last - first) * (width - left - 160)
        y = height - bottom - (math.log10(time) - low) / (high - low) * (height - bottom - 20)
        return f"{x:.0f},{y:.0f}"

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" font-family="sans-serif" '
             'font-size="12"><rect width="100%" height="100%" fill="#ffffff"/>']
    for power in range(low, high + 1):
        x, y = place(min(xs), 10 ** power).split(",")
        end = place(max(xs), 10 ** power).split(",")[0]
        parts.append(f'<path d="M{x},{y} L{end},{y}" stroke="#dddddd"/>'
                     f'<text x="{int(x) - 8}" y="{int(y) + 4}" text-anchor="end">{milliseconds(10 ** power)}</text>')
    for count in sorted(set(xs)):
        x, y = place(count, 10 ** low).split(",")
        parts.append(f'<text x="{x}" y="{int(y) + 20}" text-anchor="middle">{count:,}</text>')
    for name, colour, points in series:
        parts.append(f'<polyline points="{" ".join(place(*point) for point in points)}" fill="none" '
                     f'stroke="{colour}" stroke-width="2"/>')
        x, y = place(*points[-1]).split(",")
        parts.append(f'<text x="{int(x) + 8}" y="{int(y) + 4}" fill="{colour}">{name}</text>')
    parts.append(f'<text x="{left + 200}" y="{height - 10}" text-anchor="middle">folders</text></svg>')
    return "\n".join(parts) + "\n"


def files():
    times = google("FilesBenchmark", repetitions=3, pattern="." if not short else "IsPathSafe|Echo|1000$")
    counts = [count for count in (1000, 10000, 100000) if f"FilterSubDirsOf/{count}" in times]
    rows = [[f"`FilterSubDirs` of {count:,} folders", milliseconds(times[f"FilterSubDirsOf/{count}"]),
             "their canonical paths alone", milliseconds(times[f"CanonicalPathsOf/{count}"]),
             f"{times[f'FilterSubDirsOf/{count}'] / times[f'CanonicalPathsOf/{count}']:.2f}x"] for count in counts]
    if "TreeCanRemoveWholeDirectory" in times:
        ours, theirs = times["TreeCanRemoveWholeDirectory"], times["TreeFindNotWritable"]
        rows.append(["`CanRemoveWholeDirectory`, about 100,000 entries", milliseconds(ours), "`find -not -writable`",
                     milliseconds(theirs), f"{ours / theirs:.2f}x"])
    for name, what in (("ByItsPrefix", "safe by its prefix"), ("RefusedByItsText", "refused by its text"),
                       ("BelowVolumes", "below /Volumes")):
        rows.append([f"`IsPathSafe`, {what}", milliseconds(times["IsPathSafeFor/" + name]), "", "", ""])
    ours, theirs = times["ReadProcessOfEcho"], times["BareSpawnOfEcho"]
    rows.append(["`ReadProcess` of echo", milliseconds(ours), "posix_spawn and read", milliseconds(theirs),
                 f"{ours / theirs:.2f}x"])
    if not short:
        os.makedirs(os.path.dirname(plot), exist_ok=True)
        with open(plot, "w") as file:
            file.write(draw([(name, colour, [(count, times[f"{key}/{count}"]) for count in counts])
                             for name, colour, key in (("FilterSubDirs", "#1f5fbf", "FilterSubDirsOf"),
                                                       ("canonical paths", "#b04a1f", "CanonicalPathsOf"))]))
    return ("## Files\n\n" + table(["what", "time", "beside", "time", "ratio"], rows) +
            "\n![FilterSubDirs grows with the number of folders as their canonical paths do](images/files.svg)\n")


def loading():
    times = google("LoadingBenchmark")
    bare = times["WithoutTheLibrary"]
    rows = [[what, milliseconds(times[name]), milliseconds(times[name] - bare)] for what, name in
            (("Qt's network library alone", "WithoutTheLibrary"), ("with this library", "WithTheLibrary"),
             ("with a getconf that takes 100 ms", "WithTheLibraryAndASlowGetconf"))]
    return ("## Loading\n\nA program that does nothing, from its start to its end. The library runs getconf once while it is "
            "loaded.\n\n" + table(["program", "time", "more than bare"], rows))


def hostile():
    rows = []
    for size in (64, 1024):
        # It ends with 1 when its own goal is not met; the figures are wanted all the same.
        lines = run("HostileClients", size * 1024, mayFail=True).splitlines()
        words = {line[:16].strip(): line[16:].split() for line in lines}
        for name in ("without", "with 32 hostile"):
            rows.append([f"{size} KiB", name] + words[name][:4])
        if "ratio" not in words:
            sys.exit("no message came through beside the hostile clients")
        rows.append([f"{size} KiB", "ratio"] + [number + "x" for number in words["ratio"]] + [""])
        goal(f"delivery beside 32 hostile clients, packets of up to {size} KiB, median",
             float(words["ratio"][0]), 2, "x")
    return ("## Hostile clients\n\nAn honest pair's messages, in milliseconds, without and with 32 others that are silent, "
            "slow, flooding, stopped or\nsend garbage; the server has limits, and takes packets of up to the size "
            "given.\n\n" +
            table(["largest packet", "", "median", "p99", "worst", "server's load, processors"], rows))


def main():
    sections = [delivery(), routing(), idling(), codec(), hostile(), files(), loading()]
    head = ("# Benchmarks\n\nWritten by `Scripts/bench`. Medians of several runs unless a line says otherwise; a figure that "
            "is worse than\nits peer's, or than its goal, stays.\n\n" + "\n".join(machine()) + "\n\n## Goals\n\n" +
            table(["what", "figure", "goal", ""], goals))
    text = head + "\n" + "\n".join(sections)
    print(text)
    if not short:
        with open(page, "w") as file:
            file.write(text)


main()
