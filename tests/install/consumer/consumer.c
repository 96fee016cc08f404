/* A C program built against an installed Zentropia through pkg-config. */
#include <stdio.h>
#include <string.h>

#include "zentropia/version.h"
#include "zentropia/zentropia.h"

int main(void) {
    const char* water[] = {"water"};
    const double conc[] = {1.0};
    char err[256] = "";
    zentropia_setunits("SI", "PerMass", "", "", err, sizeof err);
    zentropia_setfluid("IF97", 1, water, 1, conc, 1, err, sizeof err);
    /* IAPWS R7-97(2012), Table 5: h = 115.331273 kJ/kg at 3 MPa, 300 K */
    const double h = zentropia_calcprop("h", "PT", 3e6, 300.0, err, sizeof err);
    printf("%s %.6f %s\n", ZENTROPIA_VERSION, h / 1000.0, err);
    return strcmp(err, "No errors") != 0 || h < 115331.0 || h > 115332.0;
}
