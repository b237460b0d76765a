"""The examples run as they are, and the page about Python shows nothing else."""

import re
import subprocess
import sys
import textwrap

import pytest
from conftest import ROOT

EXAMPLES = sorted((ROOT / "examples/python").glob("*.py"))
PAGE = ROOT / "docs/python.md"
NEEDS = {"tables_and_datasets": "xarray tqdm pandas", "show_progress": "tqdm", "statistics_on_workers": "dask distributed",
         "other_formats": "meshio", "vtk_pipeline": "vtkmodules"}


@pytest.mark.parametrize("example", EXAMPLES, ids=lambda path: path.stem)
def test_example_runs(example, tmp_path, tool):
    for module in NEEDS.get(example.stem, "").split():
        pytest.importorskip(module)
    done = subprocess.run([sys.executable, example], cwd=tmp_path, capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stderr
    for written in tmp_path.glob("*.zrfx"):
        if written.stem != "encrypted_file":
            tool("check", written)


@pytest.mark.parametrize("snippet", re.findall(r"```python\n(.*?)```", PAGE.read_text() if PAGE.exists() else "", re.S))
def test_snippets_of_the_page_are_from_examples(snippet):
    sources = [re.sub(r"^ +", "", path.read_text(), flags=re.M) for path in EXAMPLES]
    pieces = re.split(r"\n\.\.\.\n", textwrap.dedent(snippet).strip())
    for piece in pieces:
        plain = re.sub(r"^ +", "", piece.strip(), flags=re.M)
        assert any(plain in source for source in sources), piece
