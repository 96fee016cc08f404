"""The R134a conductivity rows of data/transport/reference_values.csv and their generator: the
generator's equation of state reproduces the printed saturation table of Tillner-Roth and Baehr,
its correlations agree with values computed independently, and the table holds exactly the rows
the generator writes."""

import pathlib
import runpy
import sys

DATA = pathlib.Path(__file__).resolve().parents[2] / "data" / "transport"


def generator():
    """The generator's functions, its file run as a module rather than as the main program."""
    return runpy.run_path(str(DATA / "make_r134a_reference.py"))


def test_generator_reproduces_its_checks(capsys):
    assert generator()["check"]() == 0, capsys.readouterr().out


def test_table_holds_the_generated_rows(capsys, monkeypatch):
    monkeypatch.setattr(sys, "argv", ["make_r134a_reference.py"])
    assert generator()["main"]() == 0
    generated = capsys.readouterr().out.split()
    stored = [line for line in (DATA / "reference_values.csv").read_text().split()
              if ",PL2000," in line]
    assert len(generated) == 9 and generated == stored
