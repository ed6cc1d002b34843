"""Nothing that Python passes ends the interpreter."""
import pathlib
import subprocess
import sys

FUZZ = pathlib.Path(__file__).with_name("fuzz.py")


def test_random_calls_end_in_exceptions_at_worst(tmp_path):
    run = subprocess.run(
        [sys.executable, FUZZ, "--log", tmp_path / "log"], capture_output=True, text=True, check=False, timeout=100
    )
    calls = (tmp_path / "log").read_text(encoding="utf-8", errors="replace").splitlines()
    assert run.returncode == 0, f"ended with {run.returncode} at {calls[-1:]}: {run.stderr[-3000:]}"
    assert int(run.stdout.split()[0]) >= 24


def test_callbacks_of_a_chip_that_is_left_on_do_not_outlive_python():
    program = """
import sai_virtual as sai
sai.Chip().__enter__()
sai.sai_register_l2_service(0, print)
for last in range(100):
    sai.swsdk_l2_learn(0, 1, bytes([2, 0, 0, 0, 0, last]), 3, 0)
"""
    run = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, check=False, timeout=60)
    assert (run.returncode, run.stderr) == (0, "")
