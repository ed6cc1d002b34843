#!/usr/bin/env python3
"""usage: sweep_test.py SWSDK_SWEEP SAMPLE

The fault sweep of an application finds each planted fault, and none in a correct application.
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

SWEEP, SAMPLE = sys.argv[1:]
CALLS = ["bcm_stg_create_id", "bcm_vlan_create", "bcm_vlan_port_add", "bcm_vlan_port_add", "bcm_l3_intf_find_vlan",
         "bcm_l3_intf_create", "bcm_stg_vlan_add"]


class Sweep(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.config = self.folder / "config.sai"
        self.config.write_text("# the chip is on\n")

    def sweep(self, planted, *options, arguments=(), program=SAMPLE, expected=1):
        """The runs of a sweep of the sample, and what it printed."""
        file = self.folder / "runs.json"
        command = [SWEEP, "--config", self.config, "--json", file, *options, "--", program, planted, *arguments]
        run = subprocess.run(command, capture_output=True, text=True, timeout=60)
        self.assertEqual(run.returncode, expected, run.stdout + run.stderr)
        self.printed = run.stdout + run.stderr
        return json.loads(file.read_text())["runs"] if expected != 2 else []

    def kinds(self, runs):
        return [[finding["kind"] for finding in run["findings"]] for run in runs]

    # The planted faults

    def test_nothing_is_found_in_a_correct_application(self):
        runs = self.sweep("nothing", "--expect-exit", "1", expected=0)
        self.assertEqual([run["call"] for run in runs], CALLS)
        self.assertEqual(self.kinds(runs), [[]] * len(CALLS))
        self.assertEqual([run["status"] for run in runs], [1, 1, 1, 1, 0, 1, 1])

    def test_an_ignored_result_is_found(self):
        runs = self.sweep("ignored result")
        # The interface of a VLAN without ports is of no use.
        self.assertEqual(self.kinds(runs), [[], [], [], ["success", "left"], [], [], []])

    def test_a_double_free_is_found(self):
        runs = self.sweep("double free", "--only", "bcm_vlan_create")
        self.assertEqual(self.kinds(runs), [["crashed"]])
        self.assertTrue(runs[0]["findings"][0]["detail"].startswith("SIGABRT"))

    def test_a_crash_is_found(self):
        runs = self.sweep("crash", "--only", "bcm_vlan_create")
        self.assertEqual(self.kinds(runs), [["crashed"]])
        self.assertTrue(runs[0]["findings"][0]["detail"].startswith("SIGSEGV"))

    def test_a_missing_log_is_found(self):
        runs = self.sweep("missing log")
        self.assertEqual(self.kinds(runs), [["silent"]] * 4 + [[]] + [["silent"]] * 2)

    def test_a_wrong_code_is_found(self):
        runs = self.sweep("wrong code", "--expect-exit", "1", "--only", "bcm_stg_create_id")
        self.assertEqual(self.kinds(runs), [["code"]])
        self.assertIn("exit status 3 in place of 1", self.printed)

    def test_a_leak_is_found(self):
        runs = self.sweep("leak")
        group = ["left"]
        self.assertEqual(self.kinds(runs), [[], group, group, group, [], group, group])
        self.assertRegex(runs[2]["findings"][0]["detail"],
                         r"^VLAN 10 has no members\n  call \d+: sweep_sample\[\d+\]: bcm_vlan_create\(0, 10\) = 0\n"
                         r"spanning-tree group 2 has no VLANs\n  call \d+: .*: bcm_stg_create_id\(0, 2\) = 0$")

    def test_a_hang_is_found(self):
        self.assertEqual(self.kinds(self.sweep("hang", "--only", "bcm_vlan_create", "--timeout", "1")), [["hung"]])

    # What a run tells

    def test_the_function_of_the_library_is_told(self):
        runs = self.sweep("nothing", expected=0)
        self.assertEqual([run["function"] for run in runs],
                         ["sai_stg_create", "sai_vlan_create", "sai_vlan_create", "sai_vlan_port_add",
                          "sai_l3_intf_create", "sai_l3_intf_create", "sai_stg_vlan_add"])

    def test_what_the_library_itself_ignores_is_no_finding(self):
        runs = self.sweep("nothing", "--all", expected=0)
        self.assertEqual([run["call"] for run in runs if run["ignored"]], ["bcm_l3_intf_find_vlan"])
        self.assertRegex(self.printed, r"bcm_l3_intf_find_vlan#1 +BCM_E_FAIL +sai_l3_intf_create +0 +ignored by lib")

    def test_what_the_library_ignores_in_another_case_is_a_finding(self):
        runs = self.sweep("ignored flush", "--only", "bcm_l2_addr_delete_by_port")
        self.assertEqual(self.kinds(runs)[:3], [["success"], [], []])
        self.assertEqual([run["ignored"] for run in runs[:3]], [False, True, True])
        self.assertEqual(self.kinds(runs)[-1], ["success"])

    def test_other_calls_than_before_are_told(self):
        runs = self.sweep("nothing", "--only", "bcm_vlan_create", arguments=[str(self.folder / "first")])
        self.assertEqual(self.kinds(runs), [["unreached"]])
        self.assertIn("the calls are others from number 1 on, bcm_stg_create_id", self.printed)

    # Programs that do not end

    def test_a_daemon_is_ended_when_it_has_said_a_text(self):
        self.assertEqual(self.kinds(self.sweep("daemon", "--until-line", "ready", expected=0)), [[]] * len(CALLS))

    def test_a_daemon_is_ended_after_a_time(self):
        self.sweep("daemon", "--for", "0.5", "--only", "bcm_vlan_create", expected=0)

    def test_a_daemon_that_is_not_ended_does_not_end(self):
        self.sweep("daemon", "--timeout", "0.5", expected=2)
        self.assertIn("the program does not end without any fault", self.printed)

    # Options

    def test_each_code_is_tried(self):
        runs = self.sweep("nothing", "--only", "bcm_vlan_create", "--codes", "BCM_E_FULL,BCM_E_EXISTS", expected=0)
        # The library goes on with a VLAN that is there; this one is not, and the port that joins it is refused.
        self.assertEqual([(run["code"], run["status"], run["ignored"]) for run in runs],
                         [(-6, 1, False), (-8, 1, False)])
        self.assertEqual(len(self.sweep("nothing", "--only", "bcm_stg_create_id", "--codes", "all", expected=0)), 18)

    def test_known_findings_are_accepted_with_a_reason(self):
        known = self.folder / "known"
        known.write_text("# accepted\nsuccess bcm_vlan_port_add#2 the port is added later\n"
                         "left bcm_vlan_port_add the same\nhung bcm_vlan_create old\n")
        runs = self.sweep("ignored result", "--known", known, expected=0)
        self.assertEqual(runs[3]["findings"][0]["known"], "the port is added later")
        self.assertIn('accepts "hung bcm_vlan_create", which is not found any more', self.printed)
        known.write_text("success bcm_vlan_port_add\n")
        self.sweep("ignored result", "--known", known, expected=2)
        self.assertIn("known:1: expected one of crashed, ", self.printed)

    def test_a_sweep_goes_on_where_it_stopped(self):
        file = self.folder / "done"
        options = ("--resume", file)
        self.sweep("ignored result", *options)
        whole = file.read_text()
        lines = whole.splitlines(keepends=True)
        self.assertEqual(len(lines), 1 + len(CALLS))
        changed = lines[1].replace('"stopped": false', '"stopped": "kept"')
        file.write_text(lines[0] + changed + lines[2] + lines[3][:20])
        runs = self.sweep("ignored result", *options)
        self.assertEqual([run["call"] for run in runs], CALLS)
        self.assertEqual([run["stopped"] for run in runs].count("kept"), 1)
        self.sweep("leak", *options, expected=2)
        self.assertIn("is of another sweep", self.printed)

    def test_the_report_for_ci_has_a_case_for_each_run(self):
        file = self.folder / "junit.xml"
        self.sweep("ignored result", "--junit", file)
        suite = xml.etree.ElementTree.parse(file).getroot()
        self.assertEqual((suite.get("tests"), suite.get("failures")), (str(len(CALLS)), "1"))
        failed = suite.find("testcase/failure/..")
        self.assertEqual((failed.get("classname"), failed.get("name")),
                         ("sai_vlan_port_add", "bcm_vlan_port_add#2 BCM_E_FAIL"))

    def test_what_cannot_run_is_told(self):
        self.sweep("nothing", program=self.folder / "no-program", expected=2)
        self.assertIn("no-program: No such file or directory", self.printed)
        self.sweep("nothing", program="/bin/echo", expected=2)
        self.assertIn("the program makes no call to the virtual chip", self.printed)
        self.sweep("nothing", "--only", "bcm_l2_addr_add", expected=2)
        self.assertIn("the program makes no call of bcm_l2_addr_add", self.printed)
        self.sweep("nothing", "--codes", "BCM_E_FUL", expected=2)
        self.assertIn("there is no code 'BCM_E_FUL'", self.printed)
        self.config.write_text("sai_vlan_create 0 0\n")
        self.sweep("nothing", expected=2)
        self.assertTrue(re.search("the chip could not start:\n.", self.printed), self.printed)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
