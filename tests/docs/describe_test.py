#!/usr/bin/python3
"""Does describe print a valid example and the allowed values of every parameter? describe_test.py CORVANTA"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
ROWS = ("order_id,order_day,longitude,latitude,json,xml,name,city\n"
        "1,2026-01-31,10.7,59.9,7,<x/>,pen,Oslo\n1,2026-01-31,10.7,59.9,7,<x/>,ink,Oslo\n2,2026-02-01,2.3,48.9,[],<y/>,pen,Paris\n")


class Describe(unittest.TestCase):
    folder: pathlib.Path
    actions: dict

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.actions = {action["type"]: json.loads(cls.corvanta("describe", action["type"], "--json"))
                       for action in json.loads(cls.corvanta("actions", "--json"))}

    @classmethod
    def corvanta(cls, *words, status=(0,)):
        done = subprocess.run([CORVANTA, *words], cwd=cls.folder, capture_output=True, text=True, check=False)
        assert done.returncode in status, done.stderr
        return done.stdout

    def members(self, infos, around=()):
        """Each parameter with its example and the elements around it; the last of `around` is that of the example itself."""
        for info in infos:
            outer = around[:-1]
            yield info, "".join(f"<{name}>" for name in outer) + info["example"] + "".join(f"</{name}>" for name in reversed(outer))
            container = () if info.get("element") == info["name"] else (info["name"],)
            yield from self.members(info.get("members", []), (*around, *container, info.get("element")))

    def test_examples_are_valid(self):
        elements = []
        for action in self.actions.values():
            self.assertTrue(action["examples"], action["type"])
            elements += [example["element"] for example in action["examples"]]
            elements += [element for _, element in self.members(action["parameters"], (action["type"],))]
        self.assertGreater(len(elements), 400)
        body = "\n".join(f"<action id='a{i}'>{element.replace(chr(10), ' ')}</action>" for i, element in enumerate(elements))
        (self.folder / "all.graph").write_text(f"<graph version='4.12'>\n{body}</graph>")
        problems = json.loads(self.corvanta("check", "all.graph", "--json", status=(0, 2)))
        # The example of a member is a part of an element, which may lack what is required.
        wrong = [(problem["message"], elements[problem["line"] - 2]) for problem in problems
                 if re.search("unknown|expected|is not read|is ignored|required", problem["message"])]
        self.assertEqual([(text, element) for text, element in wrong if not ("is required and empty" in text and "</" in element)], [])

    def test_examples_set_their_parameter(self):
        for action in self.actions.values():
            for info, element in self.members(action["parameters"]):
                with self.subTest(action=action["type"], parameter=info["name"]):
                    if info["type"] in ("strings", "structure"):
                        self.assertRegex(element, r"<s>|/>|</")
                        self.assertTrue("<s>" in element or info["type"] == "structure", element)
                    elif re.search(rf"\b{info['name']}='", element):
                        value = re.search(rf"\b{info['name']}='([^']*)'", element).group(1)
                        self.assertTrue(value != info["default"], element)
                    else:
                        self.assertRegex(element, ">[^<]|CDATA")

    def test_types_of_items_and_charts_have_examples(self):
        for action, count in (("writeJSON", 8), ("writeXML", 9)):
            levels = next(info for info in self.actions[action]["parameters"] if info["name"] == "Levels")
            items = next(info for info in levels["members"] if info["name"] == "Item")
            types = next(info for info in items["members"] if info["name"] == "type")
            self.assertEqual([f"type='{number}'" in element for number, element in enumerate(types["choiceExamples"])], [True] * count)
            text = self.corvanta("describe", action)
            self.assertIn("Example: <Item type='7'><s>", text)
            self.assertRegex(text, r"fileName \(text, required, default")
        charts = next(info for info in self.actions["writeReport"]["parameters"] if info["name"] == "Chart")
        types = next(info for info in charts["members"] if info["name"] == "type")
        self.assertTrue(all(types["choiceExamples"]))

    def test_what_a_parameter_allows(self):
        def infos(action):
            return {info["name"]: info for info in self.actions[action]["parameters"]}
        writer = infos("writeParquet")
        size = writer["pageSize"]
        self.assertEqual((size["low"], size["high"], size["unit"], "required" in size), (1, 1048576, "KiB", False))
        self.assertEqual(writer["keyStorage"]["choices"][1], "32-bit integer")
        self.assertEqual(infos("readExcel")["sheetIdx"]["low"], 1)
        self.assertNotIn("high", infos("readExcel")["sheetIdx"])
        self.assertEqual((writer["timeOut"]["low"], writer["timeOut"]["lowMeans"], "lowMeans" in size), (-1, "no limit", False))
        self.assertTrue(infos("writeReport")["output"]["required"])
        for action, texts in {
                "writeReport": ["Allowed: a whole number from 1 to 1000.", "Required: must not be empty.", "any number of input pins, 0 output pins\n"],
                "writeJSON": ["Saved as the element <ToWrite><s>TEXT</s>...</ToWrite>.", "Saved as <s>TEXT</s> for each text, directly in the element."]}.items():
            said = self.corvanta("describe", action)
            for text in texts:
                self.assertIn(text, said)
        self.assertRegex(said, r"(?s)  Levels \(structure.*\n +Item \(structure.*\n +type \(integer, default 0\)\n.*\n +5 = An array containing some sub-level")

    def test_levels_of_the_examples_write_valid_documents(self):
        (self.folder / "in.csv").write_text(ROWS)
        for action, name in (("writeJSON", "orders.json"), ("writeXML", "orders.xml")):
            element = self.actions[action]["examples"][-1]["element"]
            (self.folder / "g.graph").write_text("<graph version='4.12'><action id='in'><readCSV fileName='in.csv'/></action>"
                                                 f"<action id='out'>{element}</action><link from='in:0' to='out:0'/></graph>")
            self.corvanta("run", "g.graph")
            rows = self.corvanta("head", name, "-n", "9")
            self.assertEqual(len(rows.splitlines()), 5, rows)


if __name__ == "__main__":
    unittest.main()
