"""Each kind of fault where it belongs, and code that is the same without a fault."""
import unittest

import sites

SOURCE = """\
constexpr int Twice(int a) { return a * 2; }
int Count(const List& list, int limit) {
    static_assert(sizeof(int) >= 4);
    int n = 0; // a < b
    for (int i = 0; i < list.size(); ++i) {
        if (list.at(i) == limit && !list.Empty() ||
            list.Has(i, limit))
            n += list.Of(i, limit);
        else
            list.Drop("x < 3");
    }
    return n <= limit ? n : limit;
}
"""


class SitesTest(unittest.TestCase):
    def setUp(self):
        self.sites = sites.nested(sites.find("a.cpp", SOURCE))

    def of(self, kind):
        return [(s.lines[0], s.what) for s in self.sites if s.kind == kind]

    def test_finds_each_kind(self):
        self.assertEqual(self.of("turned"), [(5, "< as >="), (6, "== as !="), (12, "<= as >")])
        self.assertEqual(self.of("edge"), [(5, "< as <="), (12, "<= as <")])
        self.assertEqual(self.of("and/or"), [(6, "|| as &&"), (6, "&& as ||")])
        self.assertEqual(self.of("flipped"), [(6, "condition")])
        self.assertEqual(self.of("dropped call"), [(8, "assignment"), (10, "call")])
        self.assertEqual(self.of("swapped"), [(7, "i, limit"), (8, "i, limit")])
        self.assertEqual(self.of("off by one"), [(4, "0 and 1"), (5, "0 and 1")])

    def test_rewrites_in_place(self):
        text = sites.rewrite(SOURCE, dict(enumerate(self.sites)))
        self.assertEqual(text.count("\n"), SOURCE.count("\n") + 2)
        for opening, closing in ("()", "[]", "{}"):
            self.assertEqual(text.count(opening), text.count(closing))
        one = sites.rewrite(SOURCE, {7: next(s for s in self.sites if s.kind == "edge")})
        self.assertIn("i = 0; mutants::Less(7, i, list.size()); ++i", one)
        both = {n: s for n, s in enumerate(reversed(self.sites)) if s.lines[0] == 12}
        self.assertRegex(sites.rewrite(SOURCE, both),
                         r"return \(mutants::On\(\d\) != \(mutants::LessEqual\(\d, n, limit\)\)\) \? n : limit;")

    def test_a_fault_keeps_its_name_when_lines_move(self):
        moved = sites.nested(sites.find("a.cpp", "int x;\n\n" + SOURCE))
        self.assertEqual([s.key for s in moved], [s.key for s in self.sites])


if __name__ == "__main__":
    unittest.main()
