"""What the scripts here share: timing of whole processes, medians, tables, the machine."""
import datetime
import os
import platform
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
BIN = os.path.join(ROOT, "build", "release", "bin")
PYTHON = "/usr/bin/python3"  # Debian's, whatever stands first in PATH


def fail(sentence):
    print(f"{os.path.basename(sys.argv[0])}: {sentence}", file=sys.stderr)
    sys.exit(2)


def timed(command, cpu=False):
    """Seconds of one run, wall time or that of the processor, and its standard output. A run that fails ends the
    script."""
    with tempfile.TemporaryFile() as errors:
        start = time.perf_counter()
        run = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors)
        output = run.stdout.read()
        _, status, usage = os.wait4(run.pid, 0)
        seconds = usage.ru_utime + usage.ru_stime if cpu else time.perf_counter() - start
        run.stdout.close()
        run.returncode = os.waitstatus_to_exitcode(status)
        if run.returncode != 0:
            errors.seek(0)
            words = errors.read().decode(errors="replace").strip()
            fail(f"{' '.join(command)} ended with {run.returncode}: {words}")
    return seconds, output


def in_turns(commands, runs, cpu=False):
    """Medians and outputs of several commands, run in turns, so that a busy moment meets them all."""
    seconds = [[] for _ in commands]
    outputs = [b"" for _ in commands]
    for _ in range(runs):
        for i, command in enumerate(commands):
            took, outputs[i] = timed(command, cpu)
            seconds[i].append(took)
    return [statistics.median(times) for times in seconds], outputs


def first_line(command):
    run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    lines = run.stdout.decode(errors="replace").splitlines()
    return lines[0].strip() if lines else ""


def load():
    with open("/proc/loadavg") as file:
        return file.read().split()[0]


def system():
    with open("/etc/os-release") as file:
        facts = dict(line.rstrip().split("=", 1) for line in file if "=" in line)
    return f"{facts.get('PRETTY_NAME', '').strip(chr(34))}, {os.cpu_count()} cores, {platform.machine()}"


def header(runs, cpu):
    kind = "processor time" if cpu else "wall time"
    return f"{datetime.date.today().isoformat()}, {system()}, load {load()}; {kind}, median of {runs} runs"


def add_arguments(parser):
    """The options that both scripts have."""
    parser.add_argument("--runs", type=int, default=5, help="runs of each program (5)")
    parser.add_argument("--zr", default=os.path.join(BIN, "zr"), help="the tool to measure (build/release/bin/zr)")
    parser.add_argument("--cpu", action="store_true",
                        help="processor time instead of wall time: steadier while others use the machine")
    parser.add_argument("--markdown", action="store_true", help="tables as Markdown")


def check_tool(path):
    if not os.access(path, os.X_OK):
        fail(f"there is no {path}; ./dev build makes it")


def print_table(title, head, rows, markdown):
    """A table: the first column is text, the others are numbers as text."""
    if markdown:
        print(f"\n{title}\n")
        print("| " + " | ".join(head) + " |")
        print("|" + "|".join("---" if i == 0 else "---:" for i in range(len(head))) + "|")
        for row in rows:
            print("| " + " | ".join(row) + " |")
        return
    widths = [max(len(row[i]) for row in [head] + rows) for i in range(len(head))]
    print(f"\n{title}")
    for row in [head] + rows:
        cells = [cell.ljust(width) if i == 0 else cell.rjust(width) for i, (cell, width) in enumerate(zip(row, widths))]
        print("  " + "  ".join(cells).rstrip())
