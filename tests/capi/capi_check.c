/* The C API from a C program: texts, buffers, arrays and failures cross as zentropia.h says, and
   IF97 water reaches the published verification values. Exits non-zero on the first failed
   check. */
#include "zentropia/zentropia.h"

#include <math.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

static void check(int ok, const char* what) {
    if (!ok) {
        ++failures;
        fprintf(stderr, "FAILED: %s\n", what);
    }
}

static void check_text(const char* got, const char* want, const char* what) {
    if (strcmp(got, want) != 0) {
        ++failures;
        fprintf(stderr, "FAILED: %s: \"%s\", expected \"%s\"\n", what, got, want);
    }
}

static int starts_with(const char* text, const char* prefix) {
    return strncmp(text, prefix, strlen(prefix)) == 0;
}

static void check_close(double got, double want, double rel, const char* what) {
    if (!(fabs(got - want) <= rel * fabs(want))) {
        ++failures;
        fprintf(stderr, "FAILED: %s: %.12g, expected %.12g\n", what, got, want);
    }
}

static void select_water_si(void) {
    const char* water[] = {"water"};
    const double one[] = {1.0};
    char err[128] = "";
    zentropia_setunits("SI", "PerMass", "", "", err, sizeof err);
    check_text(err, "No errors", "setunits SI");
    zentropia_setfluid("IF97", 1, water, 1, one, 1, err, sizeof err);
    check_text(err, "Same fluid", "setfluid IF97 water");
}

/* errormsg is always written, cut to the buffer and NUL-terminated */
static void error_buffers(void) {
    char err[64];
    char small[5] = "xxxx";
    char untouched[4] = "abc";
    memset(err, 'x', sizeof err);
    zentropia_setunits("SI", "PerMass", "", "", err, sizeof err);
    check_text(err, "No errors", "success is written");
    zentropia_setunits("SI", "PerMass", "", "", small, sizeof small);
    check_text(small, "No e", "text cut to a 5-byte buffer");
    zentropia_setunits("SI", "PerMass", "", "", untouched, 0);
    check_text(untouched, "abc", "a zero length leaves the buffer alone");
    zentropia_setunits("SI", "PerMass", "", "", NULL, 100); /* nothing written, no crash */
    zentropia_setunits(NULL, NULL, NULL, NULL, err, sizeof err);
    check(starts_with(err, "Error in Zentropia: "), "NULL texts read as empty texts");
}

/* the state of IAPWS R7-97(2012) Table 5, region 1: T = 300 K, p = 3 MPa */
static void water_properties(void) {
    char err[128];
    double got[6], x[20], y[20];
    const double want[6] = {3e6, 300.0, 115331.273, 392.294792, 4173.01218, 1507.73921};
    int i;
    select_water_si();
    check_close(zentropia_calcprop("h", "PT", 3e6, 300.0, err, sizeof err), want[2], 1e-8,
                "calcprop h");
    check_text(err, "No errors", "calcprop errormsg");
    check_close(zentropia_soundspeed("PT", 3e6, 300.0, err, sizeof err), want[5], 1e-8,
                "soundspeed");
    for (i = 0; i < 20; ++i) x[i] = y[i] = -1.0;
    zentropia_allprops("PT", 3e6, 300.0, &got[0], &got[1], NULL, NULL, &got[2], &got[3], NULL, NULL,
                       x, 20, y, 20, NULL, &got[4], &got[5], NULL, NULL, NULL, NULL, NULL, NULL,
                       NULL, NULL, NULL, NULL, NULL, NULL, err, sizeof err);
    check_text(err, "No errors", "allprops with outputs left out");
    for (i = 0; i < 6; ++i) check_close(got[i], want[i], 1e-8, "allprops p, t, h, s, cp, c");
    check(x[1] == -1.0 && y[19] == -1.0, "composition entries past the components are kept");
}

static void units_and_names(void) {
    char err[128], unit[16], tiny[3], model[32], comp[20][40];
    double cf[2], conc[20];
    int index = 0, version[4], ncomp = 0;
    zentropia_setunits("Zentropia", "PerMass", "", "", err, sizeof err);
    zentropia_getunit("h", unit, sizeof unit, err, sizeof err);
    check_text(unit, "kJ/kg", "unit of h in the Zentropia set");
    zentropia_getunit("h", tiny, sizeof tiny, err, sizeof err);
    check_text(tiny, "kJ", "unit cut to its buffer");
    zentropia_getunitconvfact("P", cf, 2);
    check_close(cf[0], 1.0, 1e-15, "bar is the internal pressure unit");
    zentropia_setunits("SI", "PerMass", "T", "C", err, sizeof err);
    zentropia_getunitconvfact("T", cf, 2);
    check(cf[0] == 1.0 && cf[1] == 0.0, "a Celsius override of SI is the internal unit");
    zentropia_getunit("nonsense", unit, sizeof unit, err, sizeof err);
    check_text(err, "Error in Zentropia: property symbol \"nonsense\" unknown.", "unknown symbol");

    zentropia_zpgetindex("IF97", &index, 4);
    check(index == 3, "IF97 has index 3");
    zentropia_zpgetversion("LiBr-H2O", version, 4);
    check(version[0] == -9 && version[3] == -9, "LiBr-H2O reports no version");
    check(zentropia_isinit(-8888.8) == 1 && zentropia_isnotinit(1.0) == 1, "isinit");

    select_water_si();
    zentropia_getfluid(model, sizeof model, &ncomp, &comp[0][0], 20, 40, conc, 20);
    check_text(model, "IF97", "getfluid model");
    check(ncomp == 1 && conc[0] == 1.0, "getfluid composition");
}

/* bad input: clear texts, and the next good call works */
static void bad_input(void) {
    const char* names[] = {"water", "water", "water"};
    const double conc[] = {1.0, 1.0, 1.0};
    char err[128];
    double h;
    select_water_si();
    zentropia_calcprop("h", "PT", NAN, 300.0, err, sizeof err);
    check(starts_with(err, "Error in "), "NaN pressure is refused");
    zentropia_calcprop("nonsense", "PT", 1e5, 300.0, err, sizeof err);
    check_text(err, "Unknown property specified...", "unknown property keyword");
    zentropia_setfluid("NoSuchModel", 1, names, 1, conc, 1, err, sizeof err);
    check_text(err, "Error in Zentropia: invalid model name NoSuchModel", "unknown model");
    zentropia_setfluid("IF97", 25, names, 3, conc, 3, err, sizeof err);
    check(starts_with(err, "Error in Zentropia: "), "25 components are refused");
    zentropia_setfluid("IF97", 3, names, 1, conc, 3, err, sizeof err);
    check(starts_with(err, "Error in Zentropia: "), "more components announced than given");
    select_water_si();
    h = zentropia_calcprop("h", "PT", 3e6, 300.0, err, sizeof err);
    check_close(h, 115331.273, 1e-8, "a good call after the failures");
}

/* a procedure with nothing to do leaves the caller's text; the _nondim update acts on "No errors" */
static void texts_kept_or_read(void) {
    char err[128];
    double p = 3e6, t = 300.0, v = 0, d = 0, h = 0, s = 0, u = 0;
    select_water_si();
    zentropia_releaserefstate();
    strcpy(err, "caller's text");
    zentropia_updaterefstate(err, sizeof err);
    check_text(err, "caller's text", "updaterefstate without a reference state");
    zentropia_zp_allpropssatext("PT", 30.0, 26.85, &p, &t, &v, &d, &h, &s, &u, NULL, NULL, 0,
                                NULL, 0, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
                                NULL, err, sizeof err);
    check_text(err, "caller's text", "zp_allpropssatext of a model without it");
    strcpy(err, "No errors");
    zentropia_setrefstate_nondim(300.0, 1e5, 1e-3, err, sizeof err);
    check_text(err, "No errors", "setrefstate_nondim");
    zentropia_updaterefstate_nondim(err, sizeof err);
    check(strcmp(err, "No errors") == 0 && zentropia_isrefstateset(), "updaterefstate_nondim");
    zentropia_releaserefstate();
    zentropia_setunits("Zentropia", "PerMass", "", "", err, sizeof err);
    zentropia_alloutputconvext(&p, &t, &v, &d, &h, &s, &u, NULL, 0, NULL, 0, NULL, NULL, NULL,
                               NULL, NULL, NULL, NULL, NULL, NULL, NULL, err, sizeof err);
    check_text(err, "No errors", "alloutputconvext on its own");
    zentropia_calcprop("h", "PTjunk", 30.0, 26.85, err, sizeof err);
    check(starts_with(err, "Error in Zentropia: input specification"), "junk after PT");
}

int main(void) {
    error_buffers();
    texts_kept_or_read();
    water_properties();
    units_and_names();
    bad_input();
    if (failures)
        fprintf(stderr, "%d check(s) failed\n", failures);
    else
        printf("C API: all checks passed\n");
    return failures != 0;
}
