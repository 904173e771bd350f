"""What scripts/soak checks: the sound as it comes, and what the program takes of the machine."""
import array
import collections
import math
import operator
import os
import struct
import subprocess
import sys
import threading
import time
from pathlib import Path

RATE = 44100
BLOCK = 256  # frames
PERIOD = BLOCK / RATE
CHUNK = 16 * BLOCK  # what is checked at once
GAP = bytes(64 * 2 * 4)  # 64 frames of zeros
SILENT = 1e-3

# The base frequency is low, so that no pitch comes above: a ball an octave up, transposed by one more, glides
# up by 13 semitones.
BASE_HZ = 110.0
MAX_HZ = 1000.0
# Where Sine's fastest ramp, squared, ends: the change of slope in a frame, of the height.
CORNER = 2 / (0.004 * RATE)
THIRD_DIFFERENCE = (2 * math.pi * MAX_HZ / RATE) ** 3 + CORNER
FLOOR = 1e-5

HOLDING_VOICES = {"Clarinet", "Flute", "Organ", "Reed", "Saw", "Sine", "Strings", "Vowel"}
CHANGE_LIMIT = {"voice": 4.0, "device": 8.0}  # seconds

LOOK_EVERY = 0.05  # seconds
MEMORY_EVERY = 5.0
# From the second quarter of the run to the last. Of memory in MiB; short runs have its warming up in them.
MORE_FILES = 2
MORE_THREADS = 2


def more_memory(minutes):
    return 1.5 + 10 / minutes


# One runs on each processor, before all else, and tells when it slept a millisecond longer than it wanted.
SENTINEL = """
import os, sys, time
os.sched_setaffinity(0, {int(sys.argv[1])})
try:
    os.sched_setscheduler(0, os.SCHED_FIFO, os.sched_param(50))
except OSError:
    pass
while True:
    begin = time.monotonic()
    time.sleep(0.002)
    late = time.monotonic() - begin - 0.002
    if late > 0.001:
        print(late, flush=True)
"""


def smaps(pid):
    """Resident memory in MiB."""
    for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Rss:"):
            return int(line.split()[1]) / 1024
    return math.nan


class Findings:
    """What is wrong, told as it comes and kept."""

    def __init__(self):
        self.begin = time.monotonic()
        self.all = []
        self.recent = {}
        self.lock = threading.Lock()

    def add(self, kind, text):
        """True when it is to be recorded: the first of its kind for some seconds."""
        with self.lock:
            now = time.monotonic() - self.begin
            fresh = now - self.recent.get(kind, -math.inf) > 5
            self.recent[kind] = now
            self.all.append((now, kind, text))
            if fresh:
                print(f"soak: {now:8.1f} s  FOUND {kind}: {text}", flush=True)
            return fresh


class Ear(threading.Thread):
    """Checks what stream_sound writes."""

    def __init__(self, process, findings, folder):
        super().__init__(daemon=True)
        self.process, self.findings, self.folder = process, findings, folder
        self.kept = collections.deque(maxlen=12 * RATE // BLOCK)
        self.save_in = 0  # blocks, then what is kept is written
        self.frames = 0
        self.lost = 0
        self.server_late = 0
        self.late = collections.deque()  # (time, seconds) of blocks that took longer than their period
        self.late_in_changes = 0
        self.worst = 0.0
        self.listens = False  # the held note sounds
        self.voice = "Sine"
        self.change = None  # (kind, the voice after it)
        self.change_began = self.change_sounds = 0
        self.change_was_silent = False
        self.tail = [array.array("f"), array.array("f")]
        self.chunks = collections.deque(maxlen=3)  # (samples of both sides, peak, checked for jumps)
        self.peak = self.loudest = 0.0
        self.steepest = 0.0

    # -------------------------------------------------------- what the player tells

    def begin_change(self, kind, voice=None):
        self.change_was_silent = False
        self.change_sounds = 0
        self.change_began = self.frames
        self.change = (kind, voice or self.voice)

    # -------------------------------------------------------- the stream

    def run(self):
        expected = None
        pending = bytearray()
        whole = True
        while True:
            header = self.process.stdout.read(16)
            if len(header) < 16:
                return
            frame_time, self.server_late, took, frames = struct.unpack("=4I", header)
            data = self.process.stdout.read(frames * 8)
            if expected is not None and frame_time != expected:
                self.lost += ((frame_time - expected) & 0xFFFFFFFF) // BLOCK
                whole = False
            expected = (frame_time + frames) & 0xFFFFFFFF
            self.take_time(took / RATE)
            self.kept.append(data)
            pending += data
            self.frames += frames
            if len(pending) >= CHUNK * 8:
                self.check(bytes(pending), whole)
                pending.clear()
                whole = True
            if self.save_in > 0:
                self.save_in -= 1
                if self.save_in == 0:
                    self.save()

    def take_time(self, seconds):
        if self.change:
            self.late_in_changes += seconds > PERIOD
        elif self.listens:
            self.worst = max(self.worst, seconds)
            if seconds > PERIOD:
                self.late.append((time.monotonic(), seconds))

    def found(self, kind, text):
        """True the first time for some seconds."""
        fresh = self.findings.add(kind, f"{text}, {self.frames / RATE:.2f} s into the recording")
        if fresh and self.save_in == 0:
            self.save_in = 2 * RATE // BLOCK
        return fresh

    # -------------------------------------------------------- the checks

    def check(self, data, whole):
        samples = array.array("f")
        samples.frombytes(data)
        self.peak = max(max(samples), -min(samples))
        total = sum(samples)
        if not math.isfinite(total):
            self.found("no number", "a sample is infinite or not a number")
            self.chunks.clear()
            return
        if self.peak > 1.0:
            self.found("level", f"a sample of {self.peak:.3f}")
        self.loudest = max(self.loudest, self.peak)
        self.check_gap(data)
        self.check_jump((samples[0::2], samples[1::2]), whole)

    def check_gap(self, data):
        zeros = GAP in data
        if self.change:
            self.follow_change(zeros)
        elif self.listens and self.voice in HOLDING_VOICES:
            if zeros:
                self.found("gap", f"zeros under {self.voice}")
            elif self.peak < SILENT:
                self.found("gap", f"a level of {self.peak:.6f} under {self.voice}")

    def follow_change(self, zeros):
        """Over when there was silence and then sound for a while, or its time is up."""
        kind, voice = self.change
        silent = zeros or self.peak < SILENT
        self.change_was_silent |= silent
        self.change_sounds = 0 if silent else self.change_sounds + 1
        took = (self.frames - self.change_began) / RATE
        if took > CHANGE_LIMIT[kind] or (self.change_was_silent and self.change_sounds >= 4):
            self.voice = voice
            self.change = None

    def check_jump(self, sides, whole):
        """One chunk late: the peak is that of the chunks on either side too."""
        device = self.change and self.change[0] == "device"
        voices = {self.voice, self.change[1] if self.change else self.voice}
        if not whole:
            self.chunks.clear()
        self.chunks.append((sides, self.peak, self.listens and not device and voices == {"Sine"}))
        if len(self.chunks) < 3 or not all(chunk[2] for chunk in self.chunks):
            return
        peak = max(chunk[1] for chunk in self.chunks)
        bound = THIRD_DIFFERENCE * peak + FLOOR
        for side in (0, 1):
            values = self.chunks[0][0][side][-3:] + self.chunks[1][0][side]
            for _ in range(3):
                values = array.array("f", map(operator.sub, values[1:], values))
            largest = max(max(values), -min(values))
            self.steepest = max(self.steepest, largest / bound)
            if largest > bound:
                self.found("jump", f"a third difference of {largest:.5f} at a peak of {peak:.3f}, "
                                   f"at most {bound:.5f} is possible")

    def save(self):
        data = b"".join(self.kept)
        path = self.folder / f"found-{self.frames // RATE}s.wav"
        head = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(data), b"WAVE", b"fmt ", 16, 3, 2, RATE, RATE * 8, 8,
                           32, b"data", len(data))
        path.write_bytes(head + data)


class Watch(threading.Thread):
    """Memory, descriptors and threads of the program, and whose fault late blocks are."""

    def __init__(self, program, others, ear, findings, desk):
        super().__init__(daemon=True)
        self.program, self.pids = program, [program.pid, *(process.pid for process in others)]
        self.ear, self.findings = ear, findings
        self.rows = []  # (time, MiB, descriptors, threads)
        self.threads = []
        self.last = {}  # nanoseconds of each thread
        self.in_line = 0
        self.stood_still = 0.0
        self.waits = collections.deque(maxlen=20)  # (time, seconds in line so far)
        self.late_of_machine = self.late_of_program = 0
        self.ended = threading.Event()
        for processor in os.sched_getaffinity(0):
            sentinel = desk.start(sys.executable, "-c", SENTINEL, str(processor), stdout=subprocess.PIPE)
            threading.Thread(target=self.hear, args=(sentinel,), daemon=True).start()

    def find_threads(self):
        """Of real-time priority, or all where none has it: their files that tell how long they stood in line."""
        tasks = [task for pid in self.pids for task in Path(f"/proc/{pid}/task").glob("*")]
        try:
            urgent = [task for task in tasks if int((task / "stat").read_text().rpartition(")")[2].split()[37]) > 0]
        except OSError:  # one has just ended
            return
        self.threads = [task / "schedstat" for task in urgent or tasks]

    def hear(self, sentinel):
        for line in sentinel.stdout:
            self.stood_still += float(line)

    def waited(self):
        """Seconds that those threads stood in line for a processor, or a processor stood still."""
        for file in self.threads:
            try:
                now = int(file.read_text().split()[1])
            except OSError:
                continue
            self.in_line += now - self.last.get(file, now)
            self.last[file] = now
        return self.in_line / 1e9 + self.stood_still

    def run(self):
        next_look = next_row = time.monotonic()
        while not self.ended.wait(LOOK_EVERY):
            if time.monotonic() >= next_look:
                next_look += 1
                self.find_threads()
            self.waits.append((time.monotonic(), self.waited()))
            self.judge_late()
            if time.monotonic() < next_row:
                continue
            next_row += MEMORY_EVERY
            folder = Path(f"/proc/{self.program.pid}")
            try:
                self.rows.append((time.monotonic(), smaps(self.program.pid), len(os.listdir(folder / "fd")),
                                  len(os.listdir(folder / "task"))))
            except OSError:
                return

    def judge_late(self):
        """Of the blocks that are long enough ago for all to be known."""
        while self.ear.late and self.ear.late[0][0] < time.monotonic() - 2 * LOOK_EVERY:
            at, seconds = self.ear.late.popleft()
            near = [waited for when, waited in self.waits if at - 4 * LOOK_EVERY < when]
            waited = max(near, default=0) - min(near, default=0)
            if seconds - waited > PERIOD:
                self.late_of_program += 1
                self.ear.found("late block", f"{seconds * 1000:.1f} ms, {waited * 1000:.1f} ms of it in line for a processor")
            else:
                self.late_of_machine += 1

    def quarters(self, column):
        """The least of the second quarter and of the last."""
        values = [row[column] for row in self.rows]
        quarter = max(1, len(values) // 4)
        return min(values[quarter:2 * quarter] or values), min(values[-quarter:])

    def judge(self):
        if not self.rows:
            return
        minutes = (self.rows[-1][0] - self.rows[0][0]) / 60 + 0.1
        for column, name, limit in ((1, "memory", more_memory(minutes)), (2, "descriptors", MORE_FILES),
                                    (3, "threads", MORE_THREADS)):
            before, after = self.quarters(column)
            if after - before > limit:
                self.findings.add(name, f"from {before:.1f} to {after:.1f}")
