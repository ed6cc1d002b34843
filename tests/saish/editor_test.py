"""usage: editor_test.py SAISH

The shell at a terminal: editing, interrupts, history, completion, and the width of its help.
"""
import fcntl
import os
import pty
import re
import select
import signal
import struct
import sys
import tempfile
import termios
import unittest
from pathlib import Path

SAISH = os.path.abspath(sys.argv.pop(1))
PROMPT = "saish> "
PATIENCE = 60  # seconds, for a machine that is busy
CONTROL = re.compile(r"\x1b(\[[0-9;?]*[A-Za-z]|[()][A-Z0-9]|[=>])|[\x07\x0f\r]")


class Terminal:
    """The shell on a terminal of its own."""

    def __init__(self, home, columns=200, **environment):
        self.output = ""
        self.shown = 0  # what was waited for already
        self.process, self.end = pty.fork()
        if self.process == 0:
            kept = {name: os.environ[name] for name in os.environ if name.endswith("_OPTIONS")}
            os.chdir(home)
            os.execve(SAISH, ["saish"], kept | {"HOME": str(home), "TERM": "xterm"} | environment)
        fcntl.ioctl(self.end, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        self.wait_for("The chip is up.")
        self.wait_for(PROMPT)

    def read(self):
        ready, _, _ = select.select([self.end], [], [], PATIENCE)
        if not ready:
            raise AssertionError(f"nothing more comes behind {self.output!r}")
        try:
            data = os.read(self.end, 4096)
        except OSError:  # the shell has ended
            data = b""
        self.output += CONTROL.sub("", data.decode(errors="replace"))
        return data

    def wait_for(self, text):
        """What was shown up to `text`, since the last time."""
        while (found := self.output.find(text, self.shown)) < 0:
            if not self.read():
                raise AssertionError(f"the shell ended without {text!r}; it showed {self.output!r}")
        shown = self.output[self.shown : found]
        self.shown = found + len(text)
        return shown

    def type(self, keys):
        os.write(self.end, keys.encode())

    def enter(self, line):
        """What a line prints."""
        self.type(line + "\n")
        self.wait_for(line + "\n")
        return self.wait_for(PROMPT)

    def finish(self):
        """Waits for the end of the shell: its exit code."""
        while self.read():
            pass
        os.close(self.end)
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])

    def leave(self, keys="exit\n"):
        self.type(keys)
        return self.finish()


class Editor(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.home = Path(directory.name).resolve()
        self.history = self.home / ".local/state/saish/history"

    def test_an_interrupt_drops_the_line_and_keeps_the_chip(self):
        shell = Terminal(self.home)
        self.assertEqual(shell.enter("sai_vlan_create 0 10"), "  = 0\n")
        shell.type("sai_vlan_create 0 2")
        shell.wait_for("sai_vlan_create 0 2")
        shell.type("\x03")
        shell.wait_for("^C\n" + PROMPT)
        shell.type("\x03")
        shell.wait_for("^C\n" + PROMPT)
        vlans = [line.split()[0] for line in shell.enter("show vlan").splitlines()]
        self.assertEqual(vlans, ["VLAN", "1", "10"])
        self.assertEqual(shell.leave(), 0)

    def test_an_interrupt_ends_a_script_and_keeps_the_shell(self):
        (self.home / "endless.sai").write_text("sai_unit_get\n" * 1_000_000)
        shell = Terminal(self.home)
        shell.type("source endless.sai\n")
        shell.wait_for("  = 0\n")
        shell.type("\x03")
        shell.wait_for(": interrupted\n")
        shell.wait_for(PROMPT)
        self.assertEqual(shell.enter("sai_unit_get"), "  = 0\n")
        self.assertEqual(shell.leave(), 0)

    def test_a_signal_at_the_prompt_ends_nothing(self):
        shell = Terminal(self.home)
        shell.type("sai_vlan_create 0 2")
        shell.wait_for("sai_vlan_create 0 2")
        os.kill(shell.process, signal.SIGINT)
        shell.type("\x15sai_unit_get\n")  # takes back what the signal may have left of the line
        shell.wait_for("  = 0\n")
        self.assertEqual(shell.leave(), 0)

    def test_exit_quit_and_the_end_of_input_leave(self):
        for keys in ["exit\n", "quit\n", "\x04"]:
            self.assertEqual(Terminal(self.home).leave(keys), 0)

    def test_the_next_session_has_the_lines_of_the_last(self):
        shell = Terminal(self.home)
        shell.enter("sai_vlan_create 0 10")
        shell.enter("sai_vlan_create 0 20")
        os.kill(shell.process, signal.SIGKILL)  # lines are kept as they come
        shell.finish()
        self.assertEqual(self.history.stat().st_mode & 0o777, 0o600)
        shell = Terminal(self.home)
        shell.type("\x1b[A\x1b[A")
        shell.wait_for("sai_vlan_create 0 20")
        shell.wait_for("10")
        shell.type("\n")
        self.assertIn("  = 0\n", shell.wait_for(PROMPT))
        self.assertNotEqual(shell.enter("show vlan").find("\n10  "), -1)
        self.assertEqual(shell.leave(), 0)

    def test_the_history_is_where_the_environment_says(self):
        state = self.home / "state"
        shell = Terminal(self.home, XDG_STATE_HOME=str(state))
        shell.enter("sai_unit_get")
        self.assertEqual(shell.leave(), 0)
        self.assertIn("sai_unit_get", (state / "saish/history").read_text())
        self.assertFalse(self.history.exists())

    def test_a_home_that_cannot_be_written_is_no_error(self):
        for home in ["/proc/nowhere", "", "relative"]:
            shell = Terminal(self.home, HOME=home)
            self.assertEqual(shell.enter("sai_unit_get"), "  = 0\n")
            self.assertEqual(shell.leave(), 0)
        self.assertEqual(list(self.home.iterdir()), [])

    def test_scripts_and_pipes_have_no_history(self):
        (self.home / "a.sai").write_text("sai_unit_get\n")
        for command in [f"{SAISH} a.sai", f"{SAISH} < a.sai", f"{SAISH} -c sai_unit_get"]:
            self.assertEqual(os.system(f"cd {self.home} && HOME={self.home} {command} >out"), 0)
        self.assertFalse(self.history.exists())

    def test_tab_completes(self):
        (self.home / "intended.sai").write_text("sai_unit_get\n")
        (self.home / "scripts").mkdir()
        (self.home / "scripts/first.sai").write_text("sai_unit_get\n")
        shell = Terminal(self.home)
        for keys, line in [
            ("sai_trunk_p\t", "sai_trunk_psc_set "),
            ("fail bcm_vlan_port_a\tBCM_E_FU\t", "fail bcm_vlan_port_add BCM_E_FULL "),
            ("expect SAI_E_NOT\t", "expect SAI_E_NOT_FOUND "),
            ("expect dr\tno-s\t", "expect dropped no-such-vlan "),
            ("sai_acl_std_l3_entry_install 0 1 SAI_ACL_E\t", "sai_acl_std_l3_entry_install 0 1 SAI_ACL_EGRESS "),
            ("sai_l2_mac_entry_add 0 \tma\t", "sai_l2_mac_entry_add 0 {mac="),
            ("sai_l2_mac_entry_add 0 {fl\tSAI_L2_MAC_S\t", "sai_l2_mac_entry_add 0 {flags=SAI_L2_MAC_STATIC"),
            ("source int\t", "source intended.sai "),
            ("diff sc\tfi\t", "diff scripts/first.sai "),
        ]:
            shell.type(keys)
            shell.wait_for(line)
            shell.type("\x03")
            shell.wait_for("^C\n" + PROMPT)
        self.assertEqual(shell.leave(), 0)

    def test_tab_lists_what_there_is_and_hints_at_what_is_free(self):
        shell = Terminal(self.home)
        shell.type("journal \t\t")
        shell.wait_for("journal ")
        self.assertEqual(shell.wait_for(PROMPT + "journal ").split(), ["clear", "follow", "off", "on", "show"])
        shell.type("\x03")
        shell.wait_for("^C\n" + PROMPT)
        shell.type("sai_vlan_create 0 \t\t")
        shell.wait_for("<vid>")
        shell.wait_for(PROMPT + "sai_vlan_create 0 ")
        shell.type("10\n")
        shell.wait_for("  = 0\n")
        self.assertEqual(shell.leave(), 0)

    def test_help_has_a_line_for_each_command_within_the_width(self):
        for columns in [60, 80, 200]:
            shell = Terminal(self.home, columns)
            lines = shell.enter("help all").splitlines()
            self.assertGreater(len(lines), 200)
            self.assertEqual([line for line in lines if len(line) > columns], [])
            self.assertEqual([line for line in lines if line and not re.match(r"  [a-z]|[CF]", line)], [])
            for words in ["help", "help port attributes", "help sai_acl_l2_entry_install"]:
                self.assertEqual([line for line in shell.enter(words).splitlines() if len(line) > columns], [])
            self.assertEqual(shell.leave(), 0)


if __name__ == "__main__":
    unittest.main()
