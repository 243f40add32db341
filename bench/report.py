"""docs/performance.md: every figure of bench/ with its peer and its floor, from one run of each program."""
import datetime
import json
import os
import platform
import re
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

import growth

ROOT = Path(__file__).resolve().parent.parent
REPETITIONS = 3

SECTIONS = {
    "Messages from a controller": (
        ["classification_bench", "reply_bench"],
        "A message is classified, read, and stored in its mailbox. The peer is the tree that cJSON makes of the text, "
        "without what is then read from it; the floor of the classification is one search for one word."),
    "Requests and set-points": (
        ["stream_bench"],
        "The peer prints the same message by cJSON and sends it; the floor sends a text that is ready. A thousand "
        "set-points a second: `spins:0` sleeps until each is due and has the jitter of the machine's wake-ups, as "
        "`floor`, the same loop without a call, shows; `spins:1` reads the clock, as a loop with a core of its own "
        "does."),
    "Calls that wait": (
        ["round_trip_bench", "latency_bench", "many_connections_bench"],
        "Against the simulated controller over loopback. A settled call waits for its turn in the queue, which sends "
        "every 20 ms, and looks for its reply every 10 ms; that is the interface. On a handle of `ZK_Connect` the reply "
        "wakes the call."),
    "An idle library": (
        ["idle_bench"],
        "Processor time and context switches of a second with 20 connections on which nothing happens. The peer is a "
        "loop of 20 reads and a sleep of a millisecond."),
    "Files": (["transfer_bench"], "Against the simulated controller over loopback."),
    "Forward kinematics": (
        ["forward_kinematics_bench"],
        "The peer is KDL's recursive solver on the same chain, the floor the bare closed form of the arm."),
    "Inverse kinematics": (
        ["inverse_kinematics_bench"],
        "The peer is KDL's Levenberg-Marquardt solver at its best, on the same targets from the same seeds; `solved` is "
        "the share of the targets that were met."),
    "The C++ classes": (["cpp_bench"], "The peer is the C function below."),
}

# The peer of a figure stands in the same program; a pattern's groups are filled in.
PEERS = {
    r"handle_reply/(\w+)": r"cjson_tree/\1",
    r"read_datagram": "cjson_tree/datagram",
    r"(flange|family_zk65)": "kdl_recursive",
    r"(pose_with_frames|algo|owned_model)": "kdl_both_orientations",
    r"(?:algo|algo_wide|owned_model)/(model_\d)": r"kdl_lma/\1",
    r"owned_model_path/(model_\d)": r"kdl_lma_path/\1",
    r"get_state_cpp": "get_state_c",
    r"forward_(?:cpp|by_call)": "forward_c",
}
FLOORS = {
    r"classify\w*/\w+": "one_search",
    r"(flange|family_zk65|pose_with_frames|algo|owned_model)": "bare_closed_form",
}

# What Google Benchmark says of a run that is no counter of ours.
OWN_KEYS = {"name", "family_index", "per_family_instance_index", "run_name", "run_type", "repetitions", "threads",
            "repetition_index", "iterations", "real_time", "cpu_time", "time_unit", "error_occurred", "error_message"}

HOW_TO_READ = """\
A figure is the median of its runs, with the smallest and the largest in brackets. A machine on which other programs run
makes all figures of a run larger, and some of them more than others: read the ratio to the peer, which was measured in
the same run, before the time. A spread of over a fifth of the median says that the machine was not idle. What does not
depend on the machine's other work is the number of instructions, at the end.
"""


def output(*command, **options):
    return subprocess.run([str(word) for word in command], check=True, stdout=subprocess.PIPE, text=True,
                          **options).stdout


def figures(program):
    """The runs of each benchmark of a program, in its order."""
    is_long = program.name in ("stream_bench", "round_trip_bench", "many_connections_bench", "idle_bench",
                               "latency_bench", "transfer_bench")
    print(f"{program.name} ...", flush=True)
    with tempfile.NamedTemporaryFile() as out:  # the library prints some replies on standard output
        output(program, f"--benchmark_out={out.name}", "--benchmark_out_format=json",
               f"--benchmark_repetitions={1 if is_long else REPETITIONS}",
               "--benchmark_enable_random_interleaving=true", stderr=subprocess.DEVNULL)
        report = json.loads(Path(out.name).read_text())
    runs = {}
    for run in sorted(report["benchmarks"], key=lambda run: (run["family_index"], run["per_family_instance_index"])):
        if run["run_type"] == "iteration":
            runs.setdefault(re.sub(r"/(iterations|repeats|manual_time|real_time|process_time)\b(:\d+)?", "",
                                   run["run_name"]), []).append(run)
    return runs


def of_pattern(patterns, name, runs):
    """What a name's pattern says, when the program has it."""
    for pattern, other in patterns.items():
        if match := re.fullmatch(pattern, name):
            other = match.expand(other)
            return other if other in runs else None
    return None


def median(runs):
    return statistics.median(run["real_time"] for run in runs)


def rounded(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.3g}"


def timed(runs):
    times = [run["real_time"] for run in runs]
    spread = f" ({rounded(min(times))} to {rounded(max(times))})" if len(times) > 1 else ""
    return f"{rounded(statistics.median(times))}{spread} {runs[0]['time_unit']}"


def counters(runs):
    names = [key for key in runs[0] if key not in OWN_KEYS]
    return ", ".join(f"`{name}` {statistics.median(run[name] for run in runs):.4g}" for name in names)


def row(name, runs):
    error = next((run["error_message"] for run in runs[name] if run.get("error_occurred")), None)
    if error:
        return f"| `{name}` | {error} | | | |"

    def beside(other):
        if not other:
            return ""
        return f"{median(runs[name]) / median(runs[other]):.2f} of `{other}`"
    peer, floor = (of_pattern(patterns, name, runs) for patterns in (PEERS, FLOORS))
    return f"| `{name}` | {timed(runs[name])} | {beside(peer)} | {beside(floor)} | {counters(runs[name])} |"


def section(title, programs, words, folder):
    lines = [f"## {title}", "", words, "", "| benchmark | time | peer | floor | counted |", "| --- | --- | --- | --- | --- |"]
    for program in programs:
        runs = figures(folder / program)
        lines += [row(name, runs) for name in runs]
    return lines + [""]


def growth_section(folder):
    growth.draw(figures(folder / "growth_bench"))
    return ["## How cost grows", "",
            "Processor time by the connections, by the length of a message and by the set-points of a second, with the "
            "straight line that it ought to be.", "", "![Processor time by connections, bytes and set-points]"
            "(pictures/growth.svg)", ""]


def first_build():
    """Wall and processor seconds of the release build from nothing, without a compiler cache."""
    with tempfile.TemporaryDirectory() as folder:
        output("cmake", "-S", ROOT, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release")
        rows = []
        for words, targets in (("the library", ["ZK_Base"]), ("then the simulated controller", ["zk_simulator"]),
                               ("then all the rest, with the tests", [])):
            print(f"build of {words} ...", flush=True)
            before, start = os.times(), time.monotonic()
            output("ninja", "-C", folder, *targets, env=os.environ | {"CCACHE_DISABLE": "1"})
            after = os.times()
            processor = after.children_user + after.children_system - before.children_user - before.children_system
            rows.append(f"| {words} | {time.monotonic() - start:.0f} s | {processor:.0f} s |")
    return ["## The cost of a first build", "", "From nothing, without a compiler cache.", "",
            "| what | wall time | processor time |", "| --- | --- | --- |", *rows, ""]


def machine():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    compiler = output("c++", "--version").splitlines()[0]
    load = ", ".join(f"{value:.1f}" for value in os.getloadavg())
    return (f"Made by `scripts/bench --report` on {datetime.date.today()}, on {os.cpu_count()} cores of "
            f"{model[1] if model else platform.machine()}, Linux {platform.release().split('-')[0]}, built by {compiler}. "
            f"The load of the last 1, 5 and 15 minutes before the run: {load}.")


def write(folder, instructions):
    """Runs everything and writes the page; `instructions` are the counts by name."""
    lines = ["# Performance", "", machine(), "", "## How to read it", "", HOW_TO_READ]
    for title, (programs, words) in SECTIONS.items():
        lines += section(title, programs, words, folder)
    lines += growth_section(folder)
    lines += first_build()
    lines += ["## Instructions", "", "Of one call, counted by callgrind; `scripts/bench --instructions` holds them.", "",
              "| run | instructions |", "| --- | --- |"]
    lines += [f"| {name} | {count:,} |" for name, count in instructions.items()]
    (ROOT / "docs" / "performance.md").write_text("\n".join(lines) + "\n")
