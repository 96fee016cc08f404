"""The zentropia tool: its commands, options, exit codes and the streaming batch."""

import csv
import io
import subprocess
import sys

import pytest
import zentropia
from conftest import TOOL, run

OK, FAILURE, USAGE, FAILED_ROWS = 0, 1, 2, 3


@pytest.fixture(autouse=True)
def water_si():
    zentropia.setunits("SI", "PerMass", "", "")
    zentropia.setfluid("IF97", 1, ["water"], [1.0])


def rows(text):
    return list(csv.reader(io.StringIO(text)))


@pytest.mark.parametrize("args, units", [
    (("calc", "h", "PT", 1e5, 300), ("SI", "PerMass", "", "")),
    (("calc", "enthalpy", "PT", 1, 26.85, "--units", "Zentropia"), ("Zentropia", "PerMass", "", "")),
    (("calc", "T", "Ph", 1, 2800, "--unit", "P=MPa", "--unit=h=kJ/kg"),
     ("SI", "PerMass", "P,h", "MPa,kJ/kg")),
    (("calc", "h", "PT", 1e5, 300, "--basis", "PerMole"), ("SI", "PerMole", "", "")),
    (("--model", "if97", "calc", "cp", "PT", 14.7, 80, "--units", "Anglo-Saxon"),
     ("Anglo-Saxon", "PerMass", "", "")),
])
def test_calc_prints_the_value_exactly(args, units):
    out = run(*args, check=OK).stdout
    zentropia.setunits(*units)
    expected, errormsg = zentropia.calcprop(*args[args.index("calc") + 1:][:4])
    assert errormsg == "No errors" and float(out) == expected


def props_table(out):
    """The rows of the props table by keyword (up to the blank line before the notes)."""
    lines = out.splitlines()[2:]
    return {line.split()[0]: line for line in lines[:lines.index("")] if line.strip()}


def test_props_is_a_table_with_units():
    out = run("props", "PT", 1, 26.85, "--units", "Zentropia", check=OK).stdout
    table = props_table(out)
    assert len(table) == 1 + 24 + 2  # phase, the properties, x1 and y1
    assert table["phase"].split()[-1] == "liquid" and float(table["x1"].split()[-1]) == 1.0
    assert table["h"].split()[-1] == "kJ/kg" and table["t"].split()[-1] == "\u00b0C"
    assert float(table["p"].split()[-2]) == pytest.approx(1.0)  # in bar
    assert "not computed" in table["kappa"]                     # IF97 does not give it
    assert "kappa: IF97: calculation of Kappa not available." in out


def test_props_fills_the_derivatives_from_their_entry_points():
    # Dilute steam is nearly an ideal gas: the fundamental derivative tends to (cp/cv + 1) / 2.
    out = run("props", "PT", 0.01, 400, "--units", "Zentropia", check=OK).stdout
    table = {k: line.split() for k, line in props_table(out).items()}
    cp, cv = float(table["cp"][-2]), float(table["cv"][-2])
    assert float(table["gamma"][-1]) == pytest.approx((cp / cv + 1) / 2, rel=1e-2)  # no unit


def test_props_of_a_one_name_blend_lists_its_pure_fluids():
    # R410A at 250 K, half vapour: a row per pure fluid with its name, each phase's fractions
    # adding up to 1, the more volatile R32 richer in the vapour; the envelope a column for each
    blend = ("--model", "Varimol", "--fluid", "R410A")
    table = props_table(run("props", "Tq", 250, 0.5, *blend, check=OK).stdout)
    assert table["x1"].split()[4] == "R32" and table["x2"].split()[4] == "R125"
    x = [float(table[k].split()[-1]) for k in ("x1", "x2")]
    y = [float(table[k].split()[-1]) for k in ("y1", "y2")]
    assert sum(x) == pytest.approx(1.0, abs=1e-12) and sum(y) == pytest.approx(1.0, abs=1e-12)
    assert y[0] > x[0]
    assert rows(run("envelope", *blend, check=OK).stdout)[0] == \
        ["T [K]", "P [Pa]", "x1", "x2", "y1", "y2"]


def test_info_fluids_and_units():
    info = run("info", "--unit", "P=MPa", check=OK).stdout
    assert "647.096" in info and "22.064" in info and "MPa" in info
    assert "water" in run("fluids", check=OK).stdout.split("\n")
    assert "7732-18-5" in run("fluids", "--by", "cas", check=OK).stdout.split("\n")
    units = dict(line.split(None, 1) for line in run("units", check=OK).stdout.splitlines())
    assert len(units) == 27 and units["P"] == "Pa" and units["h"] == "J/kg"


@pytest.mark.parametrize("command", ["calc", "props", "batch", "info", "fluids", "units",
                                     "fluidfile"])
def test_help_on_each_command(command):
    for args in ((command, "--help"), ("help", command), (command, "-h")):
        out = run(*args, check=OK).stdout
        assert out.startswith("usage: zentropia " + command)
    assert run("--help", check=OK).stdout.startswith("usage: zentropia [COMMAND]")


def test_without_a_command_it_shows_water():
    out = run(check=OK).stdout
    assert "1 atm and 300 K" in out and "speed of sound" in out


@pytest.mark.parametrize("args, status, message", [
    (("calc", "h", "PT", 1e5, 300, "--model", "NoSuchModel"), FAILURE,
     "Error in Zentropia: invalid model name NoSuchModel"),
    (("calc", "nonsense", "PT", 1e5, 300), USAGE, "unknown property 'nonsense'"),
    (("calc", "h", "PT", -1, 300), FAILURE, "Error in IF97"),
    (("calc", "h", "PT", 1e5, 300, "--units", "Metric"), FAILURE, 'Unit set "Metric" unknown'),
    (("calc", "h", "PT", "abc", 300), USAGE, "'abc' is not a number"),
    (("calc", "h", "PT", 1e5), USAGE, "calc takes 4 arguments"),
    (("frobnicate",), USAGE, "unknown command 'frobnicate'"),
    (("calc", "h", "PT", 1e5, 300, "--inputspec", "PT"), USAGE, "does not belong to calc"),
    (("calc", "h", "PT", 1e5, 300, "-x"), USAGE, "unknown option -x"),
    (("calc", "h", "PT", 1e5, 300, "--unit", "MPa"), USAGE, "--unit wants SYMBOL=UNIT"),
    (("calc", "h", "PT", 1e5, 300, "--fluid", "water,nitrogen"), USAGE, "--conc is needed"),
    (("fluids", "--by", "colour"), USAGE, "--by is long, short or cas"),
    (("batch", "--columns", "1,1"), USAGE, "--columns names one column twice"),
    (("batch", "no/such/file.csv"), FAILURE, "cannot open no/such/file.csv"),
    (("calc", "h", "PT", 1e5, 300, "--frobnicate", "1"), USAGE, "unknown option --frobnicate"),
    (("calc", "h", "pt", 1e5, 300), USAGE, "the symbols P, T, v, d, h, s, u and q"),
    (("calc", "h", "PT", 1e5, 300, "--fluid", "nitrogen"), FAILURE,
     'model IF97 cannot compute "nitrogen"'),
    (("calc", "h", "PT", 1e5, 300, "--fluid", "water,methane", "--conc", "0.5,0.5"), FAILURE,
     "not a mixture of 2 components"),
    (("calc", "h", "PT", 1e5, 300, "--model", "TPSI"), FAILURE, "back-end library not installed"),
    (("fluids", "--model", "refprop"), FAILURE, "back-end library not installed"),
    (("calc", "h", "PT", 1, 300, "--unit", "P=furlong"), FAILURE, 'unit "furlong" of P'),
    (("calc", "kappa", "PT", 1e5, 300), FAILURE, "kappa is not computed for this state"),
    (("batch", "--props", "h,nonsense"), USAGE, "unknown property 'nonsense'"),
    (("batch", "--format", "xml"), USAGE, "--format is csv or json"),
    (("batch", "--precision", "40"), USAGE, "--precision is a number"),
    (("fluidfile", "zp-cli-x"), USAGE, "fluidfile wants the components"),
    (("fluidfile", "zp-cli-x", "--fluid", "CH4,C2H6", "--conc", "0.5,0.5", "--kij", "a"), USAGE,
     "--kij: 'a' is not a number"),
    (("fluidfile", "zp-cli-x", "--fluid", "CH4,C2H6", "--conc", "0.5,0.6"), FAILURE,
     "add up to 1.1, not 1"),
])
def test_failures_print_a_message_and_exit_non_zero(args, status, message):
    result = run(*args)
    assert result.returncode == status
    assert message in result.stderr and result.stdout == ""


def test_batch_evaluates_every_row():
    states = [(1e5, 300.0), (1e6, 500.0), (2e7, 700.0), (5e7, 1000.0)]
    text = "P,T\n" + "".join(f"{p!r},{t!r}\n" for p, t in states)
    table = rows(run("batch", "--props", "h,s,c,cp,eta,lambda", stdin=text, check=OK).stdout)
    assert table[0] == ["P", "T", "h [J/kg]", "s [J/kg/K]", "c [m/s]", "cp [J/kg/K]",
                        "eta [Pa.s]", "lambda [W/m/K]", "error"]
    for (p, t), row in zip(states, table[1:]):
        assert row[-1] == ""
        for keyword, value in zip(["h", "s", "c", "cp", "eta", "lambda"], row[2:-1]):
            assert float(value) == pytest.approx(zentropia.calcprop(keyword, "PT", p, t)[0],
                                                  rel=1e-12)


def test_one_by_one_and_whole_state_evaluations_agree():
    text = "".join(f"{1e5 * k},{280.0 + 40 * k}\n" for k in range(1, 20))
    few = rows(run("batch", "--props", "h,s,c", stdin=text, check=OK).stdout)
    many = rows(run("batch", "--props", "h,s,c,v,d", stdin=text, check=OK).stdout)
    # no header in the input: the symbols, with units
    assert few[0] == ["P [Pa]", "T [K]", "h [J/kg]", "s [J/kg/K]", "c [m/s]", "error"]
    for a, b in zip(few[1:], many[1:]):
        assert [float(x) for x in a[2:5]] == pytest.approx([float(x) for x in b[2:5]], rel=1e-12)


def test_batch_reports_broken_rows_and_goes_on():
    text = ("pressure,temperature\r\n1e5,300\r\n\r\n# a comment\nabc,300\n1e5\n-1,300\n"
            "1e5,nan\n2e5,320\n")
    result = run("batch", stdin=text)
    assert result.returncode == FAILED_ROWS
    assert "4 of 6 rows failed" in result.stderr
    table = rows(result.stdout)
    assert table[0][:2] == ["pressure", "temperature"]
    good, not_numbers, too_short, refused, nan, last = table[1:]
    assert good[-1] == "" and last[-1] == "" and float(last[2]) > float(good[2])
    assert not_numbers[0] == "abc" and "line 5: the inputs are not numbers" in not_numbers[-1]
    assert "line 6: too few columns" in too_short[-1]
    assert refused[-1].startswith("Error in IF97") and refused[2:5] == ["", "", ""]
    assert nan[-1].startswith("Error in ")


def test_batch_columns_spec_file_and_output(tmp_path):
    source = tmp_path / "states.csv"
    source.write_text("id,p,h\n1,10,2800\n2,1,500\n")
    target = tmp_path / "out.csv"
    run("batch", source, "--inputspec", "Ph", "--columns", "2,3", "--props", "T,q,sigma",
        "--units", "Zentropia", "--output", target, check=OK)
    table = rows(target.read_text())
    assert table[0] == ["p", "h", "T [\u00b0C]", "q", "sigma [N/m]", "error"]
    zentropia.setunits("Zentropia", "PerMass", "", "")
    for row in table[1:]:
        p, h = float(row[0]), float(row[1])
        assert float(row[2]) == pytest.approx(zentropia.calcprop("T", "Ph", p, h)[0])
        assert float(row[3]) == pytest.approx(zentropia.calcprop("q", "Ph", p, h)[0])


def peak_memory_kb(tool_args):
    """The peak resident memory of the tool run with tool_args, measured by a small parent."""
    program = ("import resource, subprocess, sys\n"
               "subprocess.run(sys.argv[1:], check=True, close_fds=False)\n"
               "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
    return int(subprocess.run([sys.executable, "-c", program, str(TOOL), *map(str, tool_args)],
                              capture_output=True, text=True, check=True).stdout)


def test_batch_streams_without_holding_the_input(tmp_path):
    # 10 rows and 500,000 rows (about 9 MB in, 35 MB out) need the same memory
    peaks = []
    for n in (10, 500000):
        source, target = tmp_path / f"in{n}.csv", tmp_path / f"out{n}.csv"
        source.write_text("".join("%d,%d\n" % (100000 + i, 300 + i % 200) for i in range(n)))
        peaks.append(peak_memory_kb(["batch", source, "--output", target]))
        with open(target) as out:
            assert sum(1 for _ in out) == n + 1
    assert peaks[1] - peaks[0] < 4000, f"peak memory {peaks[0]} kB for 10 rows, {peaks[1]} kB " \
                                       "for 500,000"


@pytest.mark.parametrize("args, same_as", [
    (("--units", "si"), ("--units", "SI")),
    (("--units", "ZENTROPIA", "--basis", "permole"), ("--units", "Zentropia", "--basis", "PerMole")),
    (("--unit", "P=psi", "--unit", "T=degF"), ("--unit", "P=psia", "--unit", "T=F")),
    (("--unit", "T=\u00b0C", "--unit", "s=kJ/(kg K)"), ("--unit", "T=C", "--unit", "s=kJ/kg/K")),
])
def test_unit_spellings_mean_the_canonical_units(args, same_as):
    for prop in ("h", "s", "eta"):
        got = run("calc", prop, "PT", 100, 300, *args, check=OK).stdout
        assert got == run("calc", prop, "PT", 100, 300, *same_as, check=OK).stdout


def test_centipoise_is_a_thousandth_of_a_pascal_second():
    eta = float(run("calc", "eta", "PT", 1e5, 300, check=OK).stdout)
    assert float(run("calc", "eta", "PT", 1e5, 300, "--unit", "eta=cP", check=OK).stdout) == \
        pytest.approx(eta * 1000, rel=1e-14)


def test_batch_keep_delimiter_precision_and_json():
    text = "id;P;T;note\n7;1e5;300;cold\n8;1e5;-5;broken\n"
    out = run("batch", "--columns", "2,3", "--delimiter", ";", "--keep", "--precision", "6",
              "--props", "h,kappa", stdin=text)
    assert out.returncode == FAILED_ROWS
    header, good, bad = [line.split(";") for line in out.stdout.splitlines()]
    assert header == ["id", "P", "T", "note", "h [J/kg]", "kappa [Pa^-1]", "error"]
    assert good == ["7", "1e5", "300", "cold", "112664", "", ""]  # 6 digits; kappa not computed
    assert bad[:4] == ["8", "1e5", "-5", "broken"] and bad[-1].startswith("Error in IF97")
    assert "kappa not computed in 1 of 2 rows" in out.stderr
    import json
    rows_json = json.loads(run("batch", "--format", "json", "--props", "h,kappa",
                               stdin="P,T\n1e5,300\n", check=OK).stdout)
    assert rows_json == [{"P": 1e5, "T": 300, "h": pytest.approx(112663.82328242698),
                          "kappa": None, "error": None}]


def test_models_fluids_and_version():
    models = dict(line.split(None, 1) for line in run("models", check=OK).stdout.splitlines())
    assert models.pop("model") == "back-end"
    assert models["IF97"] == "installed" and models["TPSI"] == "back-end library not installed"
    assert run("fluids", "--model", "IF97", check=OK).stdout == "water\n"
    assert run("fluids", "--model", "IF97", "--by", "cas", check=OK).stdout == "7732-18-5\n"
    assert run("--version", check=OK).stdout == f"zentropia {zentropia.__version__}\n"


def test_fluidfile_then_select_the_file_by_name():
    made = run("fluidfile", "zp-cli-pr", "--fluid", "methane,ethane", "--conc", "0.9,0.1",
               "--eos", "PR", "--kij", "-0.003", "--replace", check=OK).stdout.strip()
    try:
        assert made.endswith("/zp-cli-pr.vmx")
        lines = open(made).read().splitlines()
        assert lines[0] == "2 2" and len(lines) == 4 + 2 * 16 + 100
        assert lines[36].split()[1] == "-0.003" and lines[37].split()[0] == "-0.003"
        q = float(run("calc", "q", "PT", 2e6, 170, "--model", "Varimol", "--fluid", "zp-cli-pr",
                      check=OK).stdout)
        q_prsv = float(run("calc", "q", "PT", 2e6, 170, "--model", "Varimol", "--fluid",
                           "methane,ethane", "--conc", "0.9,0.1", check=OK).stdout)
        assert 0.0 < q < 1.0 and q != q_prsv
    finally:
        import os
        os.remove(made)
