"""The script that fills comments of the headers into the package."""

import importlib.util
import os
import subprocess
import sys
from pathlib import Path

import pytest

SCRIPT = Path(os.environ["LUMIVANE_ROOT"]) / "bindings/python/fill_texts.py"

HEADER = """
/// How a scene
/// is looked at.
struct LUMIVANE_EXPORT Options {
  double reach = 1.0;  ///< how far, in scene units,
                       ///< at least 0
  /// Upwards. \\throws Error never
  Vector up{0.0, 0.0, 1.0};
  bool bare = false;
  double wide =
      0.0;  ///< of a long line
  /// What `Options::reach` is.
  struct Inner {
    int value = 0;  ///< from 1
  };
  /// Looks. \\return nothing
  void look(int value) const;
};
/// Afterwards.
enum class Kind { One };
"""


@pytest.fixture
def module():
    spec = importlib.util.spec_from_file_location("fill_texts", SCRIPT)
    found = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(found)
    return found


@pytest.fixture
def comments(module, tmp_path):
    (tmp_path / "Options.h").write_text(HEADER)
    return module.comments_of([tmp_path / "Options.h"])


def test_comments_are_found_by_the_name_of_what_they_are_about(comments):
    assert comments == {
        "Options": "How a scene is looked at.",
        "Options.reach": "how far, in scene units, at least 0",
        "Options.up": "Upwards.",
        "Options.wide": "of a long line",
        "Options.Inner": "What `Options.reach` is.",
        "Options.Inner.value": "from 1",
        "Options.look": "Looks.",
        "Kind": "Afterwards.",
    }


def test_marks_are_filled_and_lines_are_wrapped(module, comments):
    filled = module.filled('    """{{Options}}\n    `r`: {{Options.reach}}."""\n', comments, "a.py")
    assert filled == (
        '    """How a scene is looked at.\n    `r`: how far, in scene units, at least 0."""\n'
    )
    long = module.filled("    {{Long}} end", {"Long": "word " * 60}, "a.py")
    assert len(long.splitlines()) == 4 and all(len(line) <= 99 for line in long.splitlines())


def test_a_name_without_a_comment_is_an_error(tmp_path):
    (tmp_path / "Options.h").write_text(HEADER)
    (tmp_path / "a.py").write_text('"""{{Options.bare}}"""\n')
    done = subprocess.run(
        [sys.executable, SCRIPT, "--to", tmp_path / "out", "--headers", tmp_path / "Options.h",
         "--files", tmp_path / "a.py"], capture_output=True, text=True,
    )  # fmt: skip
    assert done.returncode == 1
    assert "a.py: no header has a comment of Options.bare" in done.stderr
