#!/usr/bin/env python3
"""Makes tables of medians, the page and the chart from what scripts/bench has measured."""

import argparse
import datetime
import glob
import json
import os
import pathlib
import platform
import statistics
import string
import subprocess
import sys

OURS = "Vintra"
# Each peer with the packages that its results depend on.
PEERS = {
    "spdlog": ["libspdlog-dev", "libfmt-dev"],
    "log4cxx": ["liblog4cxx-dev"],
    "glog": ["libgoogle-glog-dev"],
    "log4cplus": ["liblog4cplus-dev"],
    "inih": ["libinih-dev"],
    "GKeyFile": ["libglib2.0-dev"],
    "SimpleIni": ["libsimpleini-dev"],
    "iniparser": ["libiniparser-dev"],
}
RECORDS = {
    "long": "long record",
    "short": "short record",
    "long_threads": "long, 4 threads",
    "flushed": "long, flushed",
    "flushed_threads": "long, flushed, 4 threads",
    "rollover": "long, ring of files",
    "date": "long, file per day",
    "filtered_long": "filtered, long",
    "filtered_short": "filtered, short",
    "opening": "open and close a log",
}
LATENCY = {
    f"{kind} {share}": f"{name}{share}"
    for kind, name in {"latency": "", "latency_flushed": "flushed, "}.items()
    for share in ["p50", "p99", "p99.9"]
}
# Title, results, rows, columns behind ours.
TABLES = {
    "records": ("Records", "records", RECORDS, ["spdlog", "spdlog, its line", "log4cxx", "glog", "bare loop"]),
    "latency": ("Single calls", "records", LATENCY, ["spdlog", "spdlog, its line", "log4cxx", "glog", "bare loop"]),
    "log4cplus": ("Beside log4cplus", "log4cplus", RECORDS | LATENCY, ["log4cplus", "bare loop"]),
    "instructions": (
        "Instructions of a record",
        "instructions",
        {name: RECORDS[name] for name in ["long", "short", "flushed", "filtered_long", "filtered_short"]},
        ["spdlog", "spdlog, its line", "bare loop"],
    ),
    "ini": (
        "INI files",
        "files",
        {"ini_lookup": "look up a key", "ini_rewrite": "change a key", "ini_rewrite_disk": "change a key, on the disk"},
        ["inih", "GKeyFile", "SimpleIni", "iniparser", "bare loop"],
    ),
    "files": (
        "Folders and files",
        "files",
        {
            "list": "list 100,000 paths",
            "search": "search them for a name",
            "read_file": "read 256 MiB",
            "convert": "convert a file of 256 MiB",
            "scramble": "convert 64 KiB of memory",
        },
        ["bare loop", "fts", "std", "cp"],
    ),
}
CHART = {
    "long": "long record",
    "short": "short record",
    "long_threads": "4 threads",
    "flushed": "flushed",
    "flushed_threads": "flushed,\\n4 threads",
    "rollover": "ring of files",
    "date": "file per day",
}


def output(*command):
    """What a command prints, or nothing where it fails."""
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout.strip()


def read_results(folder):
    """All repetitions, in ns, as {program: {scenario: {peer: [time]}}}. One that has failed ends everything."""
    results = {}
    for path in glob.glob(f"{folder}/*.json"):
        program = results.setdefault(pathlib.Path(path).stem.removesuffix("_threads"), {})
        text = pathlib.Path(path).read_text()
        for run in json.loads(text)["benchmarks"] if text else []:
            scenario, peer = run["name"].split("/")[:2]
            if run.get("error_occurred"):
                sys.exit(f"{scenario}/{peer} failed: {run['error_message']}")
            if run["run_type"] != "iteration":
                continue
            times = {scenario: run["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6}[run["time_unit"]]}
            if "p50" in run:
                times = {f"{scenario} {share}": run[share] for share in ["p50", "p99", "p99.9"]}
                times["clock"] = run["clock"]
            for name, time in times.items():
                program.setdefault(name, {}).setdefault(peer, []).append(time)
    counts = pathlib.Path(folder, "instructions")
    for line in counts.read_text().splitlines() if counts.exists() else []:
        name, count = line.rsplit(" ", 1)
        scenario, peer = name.split("/")
        results.setdefault("instructions", {}).setdefault(scenario, {})[peer] = [int(count)]
    return results


def medians(results):
    return {
        program: {
            scenario: {peer: statistics.median(times) for peer, times in peers.items()}
            for scenario, peers in scenarios.items()
        }
        for program, scenarios in results.items()
    }


def amount(value, program):
    """Three digits or four, with a unit that keeps neighbours comparable."""
    if program == "instructions":
        return str(value)
    units = {"ns": 1, "µs": 1e3, "ms": 1e6}
    unit = next((unit for unit, size in units.items() if value < 1e4 * size), "ms")
    value /= units[unit]
    return f"{value:.{max(0, 3 - len(str(int(value))))}f} {unit}"


def markdown(rows):
    """A table in columns, of which the first is text; the first row is the head."""
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    aligned = [
        [cell.rjust(width) if column else cell.ljust(width) for column, (cell, width) in enumerate(zip(row, widths))]
        for row in rows
    ]
    rule = [("-" * (width - 1) + ":") if column else "-" * width for column, width in enumerate(widths)]
    return "\n".join("| " + " | ".join(row) + " |" for row in [aligned[0], rule, *aligned[1:]])


def ratio(ours, other):
    value = ours / other
    return f"{value:.2f}" if value >= 0.095 else f"{value:.1g}"


def comparison(figures, program, names, columns):
    """Our time and each other one, with ours divided by it; nothing for rows that were not measured."""
    measured = {name: times for name, times in figures.get(program, {}).items() if name in names}
    columns = [column for column in columns if any(column in times for times in measured.values())]
    rows = [["", OURS, *columns]]
    for scenario, name in names.items():
        times = measured.get(scenario)
        if not times:
            continue
        ours = times.get(OURS)
        row = [name, amount(ours, program) if ours is not None else "—"]
        for column in columns:
            other = times.get(column)
            row.append("—" if other is None else amount(other, program))
            if ours is not None and other:
                row[-1] += f" ({ratio(ours, other)})"
        rows.append(row)
    return markdown(rows) if len(rows) > 1 else ""


def own_modes(figures):
    """What our modes and scrambling add to a plain record."""
    times = {name: peers.get(OURS) for name, peers in figures.get("records", {}).items()}
    if not times.get("long"):
        return ""
    names = {"rollover": "ring of files", "date": "files per day", "scrambled": "scrambled"}
    rows = [
        [text, amount(times[name], "records"), ratio(times[name], times["long"])]
        for name, text in names.items()
        if times.get(name)
    ]
    return markdown([["", OURS, "to one plain file"], *rows]) if rows else ""


def spread(results):
    """The median over all measurements of half their interquartile range, in per cent."""
    halves = []
    for scenarios in results.values():
        for peers in scenarios.values():
            for times in peers.values():
                if len(times) > 3:
                    low, middle, high = statistics.quantiles(times, n=4)
                    halves.append((high - low) / 2 / middle * 100)
    return f"{statistics.median(halves):.0f}"


def missing_peers(figures):
    measured = {peer for scenarios in figures.values() for peers in scenarios.values() for peer in peers}
    return [peer for peer in PEERS if peer not in measured]


def versions():
    packages = [package for names in PEERS.values() for package in names]
    lines = output("dpkg-query", "-W", "-f=${Package} ${Version}\\n", *packages).splitlines()
    known = dict(line.split(" ") for line in lines)
    rows = [[peer, name, known.get(name) or "not installed"] for peer, names in PEERS.items() for name in names]
    return markdown([["", "package", "version"], *rows])


def machine():
    cpu = dict(
        (part.strip() for part in line.split(":", 1)) for line in output("lscpu").splitlines() if ":" in line
    )
    virtual = ", a virtual machine" if "Hypervisor vendor" in cpu else ""

    def file_system(variable):
        mounts = output("findmnt", "-no", "FSTYPE", "-T", os.environ.get(variable, "/tmp"))
        return mounts.splitlines()[-1]  # of several mounts on one place the last is seen

    system = platform.freedesktop_os_release()["PRETTY_NAME"]
    kernel = platform.release().split("-")[0]
    return {
        "processor": f"{cpu.get('Model name', 'unknown')}, {os.cpu_count()} cores{virtual}",
        "system": f"{system}, Linux {kernel}, {output('c++', '--version').splitlines()[0]}",
        "memory_files": file_system("VINTRA_BENCH_DIR"),
        "disk_files": file_system("VINTRA_BENCH_DISK_DIR"),
    }


def draw_chart(figures, folder, results):
    loggers = ["spdlog", "log4cxx", "glog", "log4cplus"]
    columns = [OURS, *[peer for peer in loggers if peer not in missing_peers(figures)]]
    lines = ["\t".join(["scenario", *columns])]
    for scenario, name in CHART.items():
        times = figures["log4cplus"].get(scenario, {}) | figures["records"].get(scenario, {})
        lines.append("\t".join([name, *[str(times.get(column, "-")) for column in columns]]))
    data = pathlib.Path(results, "chart.tsv")
    data.write_text("\n".join(lines) + "\n")
    settings = f"data='{data}'; chart='{folder}/benchmarks.svg'; columns={len(columns) + 1}"
    subprocess.run(["gnuplot", "-e", settings, "bench/chart.gp"], check=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--command", required=True)
    parser.add_argument("--save", metavar="FOLDER", help="write the page and the chart there")
    parser.add_argument("results")
    options = parser.parse_args()
    results = read_results(options.results)
    figures = medians(results)
    texts = {
        key: comparison(figures, program, names, columns) for key, (_, program, names, columns) in TABLES.items()
    }
    texts["modes"] = own_modes(figures)
    for key, text in texts.items():
        if text:
            print(f"{TABLES[key][0] if key in TABLES else 'Modes'}\n\n{text}\n")
    if lacking := [key for key, text in texts.items() if not text]:
        return f"not saved, as there are no results for {', '.join(lacking)}" if options.save else None
    absent = missing_peers(figures)
    notice = f"Not measured, as they are not here: {', '.join(absent)}." if absent else "No peer is missing."
    print(notice)
    if not options.save:
        return None
    page = string.Template(pathlib.Path("bench/benchmarks.md.in").read_text()).substitute(
        texts,
        **machine(),
        missing=notice,
        versions=versions(),
        spread=spread(results),
        clock=amount(figures["records"]["clock"][OURS], "records"),
        repetitions=str(len(results["records"]["long"][OURS])),
        date=datetime.date.today().isoformat(),
        command=options.command,
    )
    draw_chart(figures, options.save, options.results)
    pathlib.Path(options.save, "benchmarks.md").write_text(page)
    print(f"Saved as {options.save}/benchmarks.md and {options.save}/benchmarks.svg")
    return None


sys.exit(main())
