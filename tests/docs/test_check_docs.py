#!/usr/bin/env python3
"""The checker of the documents finds what it is there to find."""

import pathlib
import unittest

import check_docs

SELF = pathlib.Path(__file__).resolve()


class CheckDocs(unittest.TestCase):
    def test_blocks_are_told_by_language_and_mark(self):
        blocks, prose = check_docs.blocks_of("a\n```sh by-hand\nls\n```\nb\n")
        self.assertEqual([(b.language, b.mark, b.text) for b in blocks], [("sh", "by-hand", "ls\n")])
        self.assertEqual(prose, "a\nb")

    def test_a_block_that_is_not_closed_is_wrong(self):
        with self.assertRaises(check_docs.Wrong):
            check_docs.blocks_of("```sh\nls\n")

    def test_a_link_to_nothing_is_found(self):
        wrong = list(check_docs.broken_links(SELF, "[a](nothing.md) [b](check_docs.py) [c](#here)"))
        self.assertEqual(wrong, ["link to nothing.md, which is not there"])

    def test_a_path_of_the_repository_that_is_not_there_is_found(self):
        wrong = list(check_docs.broken_links(SELF, "`tests/nothing.h` `tests/docs/` `other/x` `a/b`"))
        self.assertEqual(wrong, ["`tests/nothing.h` is not there"])

    def test_a_function_that_no_source_names_is_found(self):
        wrong = list(check_docs.unknown_functions("`A::B` `A::C` `std::move`", "void A::B() {}"))
        self.assertEqual(wrong, ["`A::C` is in no source"])

    def test_dots_stand_for_anything_within_a_line(self):
        self.assertTrue(check_docs.matches('into ".../x.db"\n', 'into "/tmp/x.db"\n'))
        self.assertFalse(check_docs.matches("a...b\n", "a\nb\n"))
        self.assertFalse(check_docs.matches("a\n", "a\nb\n"))

    def test_log_lines_are_compared_without_times_and_names(self):
        shown = '2024-03-06T17:20:12.231+01:00 info    next: event 7 "Welcome" at 2024-03-06 17:21'
        got = '2026-11-21T10:09:28.133-05:00 info    next: event 2 "Other" at 2026-11-21 10:10'
        self.assertEqual(check_docs.shape(shown), check_docs.shape(got))
        self.assertNotEqual(check_docs.shape(shown), check_docs.shape(got.replace("next", "last")))

    def test_an_option_that_nobody_knows_is_found(self):
        check_docs.check_options(["--project=x", "file"], "  --project FILE", "serve")
        with self.assertRaises(check_docs.Wrong):
            check_docs.check_options(["--proj"], "  --project FILE", "serve")

    def test_a_block_that_is_no_json_is_found(self):
        check_docs.check_json('{"a": [1, 2]}')
        for text in ('{"a": }', '{"a": 1, "a": 2}', "{} {}"):
            with self.assertRaises(check_docs.Wrong):
                check_docs.check_json(text)


if __name__ == "__main__":
    unittest.main()
