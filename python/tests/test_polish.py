"""kavren.polish on a synthesised near miss: the polished text is accepted by kavren-check,
differs from the input only in thrust numbers, and bad arguments are refused."""

import os
import pathlib
import subprocess

import pytest

import kavren

ROOT = pathlib.Path(__file__).resolve().parents[2]
SYNTH = os.environ.get("KAVREN_SYNTH", str(ROOT / "build/release/tools/kavren-synth"))
CHECK = os.environ.get("KAVREN_CHECK", str(ROOT / "build/release/kavren-check"))


@pytest.fixture(scope="module")
def near_miss(tmp_path_factory):
    folder = tmp_path_factory.mktemp("nearmiss")
    subprocess.run([SYNTH, "nearmiss", str(folder), "--seed", "3"], check=True,
                   capture_output=True)
    return folder


def test_polished_text_is_accepted_and_only_thrust_changes(near_miss, tmp_path):
    catalogue = kavren.Catalogue(near_miss / "KAVREN_Asteroids_Data.txt")
    text = (near_miss / "Result.txt").read_text()
    result = kavren.polish(near_miss / "Result.txt", catalogue, threads=2)
    assert result.arcs and all(a.polished for a in result.arcs)
    assert result.report.accepted and not result.left
    for before, after in zip(text.splitlines(), result.text.splitlines()):
        if before != after:
            assert before.split()[:3] == after.split()[:3]
    assert len(text.splitlines()) == len(result.text.splitlines())
    (tmp_path / "Result.txt").write_text(result.text)
    (tmp_path / "KAVREN_Asteroids_Data.txt").symlink_to(near_miss / "KAVREN_Asteroids_Data.txt")
    run = subprocess.run([CHECK], cwd=tmp_path, capture_output=True, text=True)
    assert run.stdout == (near_miss / "expected_stdout.txt").read_text()
    assert kavren.polish(text, catalogue, threads=1).text == result.text


@pytest.mark.parametrize("kwargs", [{"safety": 0.0}, {"safety": 1.5}, {"max_degrees": 0.0},
                                    {"threads": 0}])
def test_bad_arguments(near_miss, kwargs):
    catalogue = kavren.Catalogue(near_miss / "KAVREN_Asteroids_Data.txt")
    with pytest.raises(ValueError):
        kavren.polish("", catalogue, **kwargs)
