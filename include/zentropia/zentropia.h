/*
 * Zentropia C API: one plain C function per procedure of the programming interface, named
 * zentropia_<procedure>, for C, Fortran (ISO_C_BINDING) and Modelica external functions.
 * Link with -lzentropia_c.
 *
 * Calling convention
 *  - Texts in: NUL-terminated strings; NULL reads as the empty text.
 *  - Texts out: a caller buffer and its length in bytes (char *text, int text_len). The text is
 *    cut to text_len - 1 characters and NUL-terminated; nothing is written when the buffer is
 *    NULL or text_len < 1.
 *  - errormsg: every procedure that has one writes it ("No errors" on success, "Same fluid" for
 *    a repeated selection, else the failure text), except where it has nothing to do and leaves
 *    the caller's text as it was: zentropia_updaterefstate and _nondim without a reference state,
 *    zentropia_zp_allpropsallphases, zentropia_zp_allpropssatext and zentropia_allpropssatext for
 *    models without these bundles, zentropia_liquidcmp, _vaporcmp and _fugacoef for a table
 *    model, zentropia_zp_saturationline and zentropia_saturation_line with no model selected.
 *    zentropia_setfluid, zentropia_setrefstate_nondim and zentropia_updaterefstate_nondim read it
 *    on entry and act on it: setrefstate_nondim and updaterefstate_nondim do their work only when
 *    it reads "No errors", setfluid answers "Same fluid" to an unchanged selection only then.
 *    Pass an initialised buffer to all of these, "No errors" to act.
 *  - Reals and integers in: by value. Reals and integers out: pointers; NULL discards a value.
 *  - Arrays: a pointer and its number of elements (double *x, int x_len). Composition vectors
 *    hold at most 20 entries; their procedures read and write the first min(x_len, 20). NULL or
 *    x_len < 1 passes an empty array.
 *  - Arrays of texts out: a buffer of count slots of width bytes each (char *names, int count,
 *    int width); slot i starts at names + i * width and holds a NUL-terminated text.
 *  - Units: the caller's, as chosen with zentropia_setunits, unless a procedure says otherwise
 *    (the zp_ procedures and the dispatchers work in the internal units bar, degrees C, kJ/kg).
 *  - The not-computed value -8888.8 marks an output that nothing computed.
 *  - No function lets a C++ exception escape. The library keeps one process-wide selection and
 *    is not thread-safe: serialise the calls.
 */
#ifndef ZENTROPIA_H
#define ZENTROPIA_H

#if defined(__GNUC__)
#define ZENTROPIA_API __attribute__((visibility("default")))
#else
#define ZENTROPIA_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Selection and dispatch ------------------------------------------------------------ */

/* 1 when value still holds the not-computed value -8888.8, else 0 */
ZENTROPIA_API int zentropia_isinit(double value);
ZENTROPIA_API int zentropia_isnotinit(double value);
/* index (0 to 11) of the model named by the first len_modelname characters, or -1 */
ZENTROPIA_API void zentropia_zpgetindex(const char* modelname, int* index, int len_modelname);
/* the back-end's four version numbers; -9 when it reports none, -8 for an unknown name */
ZENTROPIA_API void zentropia_zpgetversion(const char* modelname, int* version, int version_len);
/* releases every back-end; the selection stays */
ZENTROPIA_API void zentropia_releaseobjects(void);
/* selects model, in_ncmp components (names) and composition (concentrations) */
ZENTROPIA_API void zentropia_setfluid(const char* model, int in_ncmp, const char* const* in_cmp,
                                      int in_cmp_len, const double* in_cnc, int in_cnc_len,
                                      char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_getfluid(char* model, int model_len, int* ncomp, char* comp,
                                      int comp_count, int comp_width, double* conc, int conc_len);
/* the state in internal units; usr_x, usr_y are read as the back-end's starting values */
#define ZENTROPIA_DISPATCHERS(X) X(allthermophys) X(allthermophyssu2)
#define ZENTROPIA_DECLARE_DISPATCHER(name)                                                         \
    ZENTROPIA_API void zentropia_##name(                                                           \
        const char* inputspec, double input1, double input2, double* p, double* t, double* v,      \
        double* d, double* h, double* s, double* u, double* q, double* usr_x, int usr_x_len,       \
        double* usr_y, int usr_y_len, double* cv, double* dpdt, double* dpdv, double* d2pdt2,      \
        double* d2pdv2, double* d2pdtdv, double* dcvdt, double* eta, double* lambda,               \
        double* sigma, char* errormsg, int errormsg_len);
ZENTROPIA_DISPATCHERS(ZENTROPIA_DECLARE_DISPATCHER)
/* one property by the back-end's keyword, internal units */
ZENTROPIA_API double zentropia_calculate(const char* inputspec, double input1, double input2,
                                         const char* outputspec, char* errormsg, int errormsg_len);
/* a fluid constant by keyword ("M_mol", "T_crit", "P_crit", "T_min", "T_max"), internal units */
ZENTROPIA_API double zentropia_getinfo(const char* property, char* errormsg, int errormsg_len);
/* molar mass of the components (kg/mol), each caller position */
ZENTROPIA_API void zentropia_zp_mmolcomp(double* mmol, int mmol_len, char* errormsg,
                                         int errormsg_len);
/* molar mass of a mixture of the selected components with composition cnc */
ZENTROPIA_API double zentropia_zp_mmol_cnc(const double* cnc, int cnc_len, char* errormsg,
                                           int errormsg_len);
/* the state of given v and u (read from *v and *u), internal units */
ZENTROPIA_API void zentropia_zflow_tmd_vu(double* p, double* t, double* v, double* h, double* s,
                                          double* u, double* cv, double* dpdt, double* dpdv,
                                          double* d2pdt2, double* d2pdv2, double* d2pdtdv,
                                          double* dcvdt, char* errormsg, int errormsg_len);
/* the state in each phase (arrays of 3: vapour, first liquid, second liquid), internal units */
ZENTROPIA_API void zentropia_zp_allpropsallphases(
    const char* inputspec, double input1, double input2, double* p, int p_len, double* t, int t_len,
    double* v, int v_len, double* d, int d_len, double* h, int h_len, double* s, int s_len,
    double* u, int u_len, double* q, double* usr_x, int usr_x_len, double* usr_y, int usr_y_len,
    double* cv, int cv_len, double* dpdt, int dpdt_len, double* dpdv, int dpdv_len, double* d2pdt2,
    int d2pdt2_len, double* d2pdv2, int d2pdv2_len, double* d2pdtdv, int d2pdtdv_len, double* dcvdt,
    int dcvdt_len, double* eta, double* lambda, char* errormsg, int errormsg_len);
/* the state and its saturated liquid and vapour, internal units */
ZENTROPIA_API void
zentropia_zp_allpropssatext(const char* inputspec, double input1, double input2, double* p,
                            double* t, double* v, double* d, double* h, double* s, double* u,
                            double* q, double* usr_x, int usr_x_len, double* usr_y, int usr_y_len,
                            double* v_liq, double* d_liq, double* h_liq, double* s_liq,
                            double* u_liq, double* v_vap, double* d_vap, double* h_vap,
                            double* s_vap, double* u_vap, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_alltransprops_zp(double t, double d, double* eta, double* eta_t,
                                              double* eta_d, double* lambda, double* lambda_t,
                                              double* lambda_d, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_capeopenderiv_zp(const char* inputspec, double input1, double input2,
                                              double* v, double* h, double* s, double* g,
                                              double* lnphi, int lnphi_len, char* errormsg,
                                              int errormsg_len);
ZENTROPIA_API void zentropia_psat_k1(double k1, double t, double* psat, char* errormsg,
                                     int errormsg_len);
ZENTROPIA_API void zentropia_xy_a_alfa(double aij, double aji, double alfa, double p, double t,
                                       double* x, int x_len, double* y, int y_len, char* errormsg,
                                       int errormsg_len);
ZENTROPIA_API void zentropia_xy_kij(double kij, double p, double t, double* x, int x_len, double* y,
                                    int y_len, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_hsxy_mp(double p, double t, double molpar, double* h_r, double* s_r,
                                     double* x, int x_len, double* y, int y_len, char* errormsg,
                                     int errormsg_len);
/* The phase envelope (saturation curve) of the selection, each
       void zentropia_<name>(int *npnts, double *t, int t_len, double *p, int p_len, double *x,
                             int x_len, double *y, int y_len, char *errormsg, int errormsg_len);
   t and p have room for t_len and p_len points, x and y for x_len / 20 and y_len / 20 points of
   20 entries; *npnts receives the number of points. zp_saturationline in internal units,
   saturation_line in the caller's. */
#define ZENTROPIA_PHASE_ENVELOPES(X) X(zp_saturationline) X(saturation_line)
#define ZENTROPIA_DECLARE_PHASE_ENVELOPE(name)                                                     \
    ZENTROPIA_API void zentropia_##name(int* npnts, double* t, int t_len, double* p, int p_len,    \
                                        double* x, int x_len, double* y, int y_len,                \
                                        char* errormsg, int errormsg_len);
ZENTROPIA_PHASE_ENVELOPES(ZENTROPIA_DECLARE_PHASE_ENVELOPE)
/* look-up tables of the table models */
ZENTROPIA_API void zentropia_settable(const char* tablename, const char* tabletype,
                                      const char* interpolmethod, const char* meshname,
                                      const char* searchalg, int phase, char* errormsg,
                                      int errormsg_len);
ZENTROPIA_API void zentropia_settable_new(const char* tablename, const char* inputspec,
                                          double input1_min, double input1_max, double input2_min,
                                          double input2_max, double meshspacing,
                                          const char* tabletype, const char* intpolmethod,
                                          const char* searchalg, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_usetable(const char* tablename, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_alltableinfo(char* sublibrary, int sublibrary_len, char* fluid,
                                          int fluid_len, char* table_type, int table_type_len,
                                          char* intpol_method, int intpol_method_len,
                                          char* search_alg, int search_alg_len, char* table_props,
                                          int table_props_len, double* x_min, double* x_max,
                                          double* y_min, double* y_max, double* mesh_space,
                                          int* nzones, char* errormsg, int errormsg_len);
/* the fluid table's names (longshortcas 0 long, 1 short, 2 CAS) offered by model's back-end */
ZENTROPIA_API void zentropia_getfluidnames(int longshortcas, const char* model, int* nfluid,
                                           char* fluidset, int fluidset_count, int fluidset_width,
                                           char* errormsg, int errormsg_len);
/* the component names model's back-end offers */
ZENTROPIA_API void zentropia_getcompset(const char* model, int* ncomps, char* compset,
                                        int compset_count, int compset_width, char* errormsg,
                                        int errormsg_len);
/* reads the fluid name table beside the library */
ZENTROPIA_API void zentropia_readfluidstable(char* errormsg, int errormsg_len);
/* string with its ASCII letters lowered, cut to 32 characters */
ZENTROPIA_API void zentropia_tolower(const char* string, char* lowered, int lowered_len);

/* ---- Property interface (caller's units) ------------------------------------------------- */

ZENTROPIA_API void zentropia_inputconversion(const char* inputspec, double input1, double input2,
                                             double* zp_input1, double* zp_input2);
ZENTROPIA_API void zentropia_outputconversion(const char* outputspec, double zp_output,
                                              double* output);
ZENTROPIA_API void zentropia_outputconversion_cnc(const char* inputspec, const double* cnc,
                                                  int cnc_len, const char* outputspec,
                                                  double zp_output, double* output);
/* one property by keyword ("h" or "enthalpy", "cp", "alpha", ...) */
ZENTROPIA_API double zentropia_calcprop(const char* propspec, const char* inputspec, double input1,
                                        double input2, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_allprops(const char* inputspec, double input1, double input2,
                                      double* p, double* t, double* v, double* d, double* h,
                                      double* s, double* u, double* q, double* x, int x_len,
                                      double* y, int y_len, double* cv, double* cp, double* c,
                                      double* alpha, double* beta, double* chi, double* fi,
                                      double* ksi, double* psi, double* zeta, double* theta,
                                      double* kappa, double* gamma, double* eta, double* lambda,
                                      char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_allpropssat(
    const char* inputspec, double input1, double input2, double* p, double* t, double* v, double* d,
    double* h, double* s, double* u, double* q, double* x, int x_len, double* y, int y_len,
    double* cv, double* cp, double* c, double* alpha, double* beta, double* chi, double* fi,
    double* ksi, double* psi, double* zeta, double* theta, double* kappa, double* gamma,
    double* eta, double* lambda, double* d_liq, double* d_vap, double* h_liq, double* h_vap,
    double* t_sat, double* dd_liq_dp, double* dd_vap_dp, double* dh_liq_dp, double* dh_vap_dp,
    double* dt_sat_dp, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_allpropssatext(
    const char* inputspec, double input1, double input2, double* p, double* t, double* v, double* d,
    double* h, double* s, double* u, double* q, double* x, int x_len, double* y, int y_len,
    double* v_liq, double* d_liq, double* h_liq, double* s_liq, double* u_liq, double* v_vap,
    double* d_vap, double* h_vap, double* s_vap, double* u_vap, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_allpropssu2(const char* inputspec, double input1, double input2,
                                         double* p, double* t, double* d, double* s, double* u,
                                         double* cv, double* c2, double* alpha, double* beta,
                                         char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_allpropstarn(const char* inputspec, double input1, double input2,
                                          double* p, double* t, double* v, double* d, double* h,
                                          double* s, double* u, double* cv, double* cp, double* c,
                                          double* alpha, double* beta, double* zeta, double* eta,
                                          double* lambda, double* dlam_dt, double* dlam_drho,
                                          double* deta_dt, double* deta_drho, char* errormsg,
                                          int errormsg_len);
ZENTROPIA_API void zentropia_alltransprops(const char* inputspec, double input1, double input2,
                                           double* eta, double* eta_t, double* eta_rho,
                                           double* lambda, double* lambda_t, double* lambda_rho,
                                           double* sigma, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_alltransprops_old(double t, double d, double* eta, double* eta_t,
                                               double* eta_d, double* lambda, double* lambda_t,
                                               double* lambda_d, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_zflow_vu(double* p, double* t, double v, double* h, double* s,
                                      double u, double* alpha, double* beta, double* chi,
                                      double* fi, double* zeta, double* gamma, char* errormsg,
                                      int errormsg_len);
/* the converters of the bundles: internal to caller's units, in place */
ZENTROPIA_API void zentropia_alloutputconv(double* p, double* t, double* v, double* d, double* h,
                                           double* s, double* u, double* cv, double* cp, double* c,
                                           double* alpha, double* beta, double* chi, double* fi,
                                           double* ksi, double* psi, double* zeta, double* theta,
                                           double* kappa, double* eta, double* lambda);
ZENTROPIA_API void zentropia_alloutputconvsu2(double* p, double* t, double* d, double* s, double* u,
                                              double* cv, double* c2, double* alpha, double* beta);
ZENTROPIA_API void zentropia_alloutputconvtarn(double* p, double* t, double* v, double* d,
                                               double* h, double* s, double* u, double* cv,
                                               double* cp, double* c, double* alpha, double* beta,
                                               double* zeta, double* eta, double* lambda);
ZENTROPIA_API void zentropia_alloutputconvext(double* p, double* t, double* v, double* d, double* h,
                                              double* s, double* u, const double* x, int x_len,
                                              const double* y, int y_len, double* v_liq,
                                              double* d_liq, double* h_liq, double* s_liq,
                                              double* u_liq, double* v_vap, double* d_vap,
                                              double* h_vap, double* s_vap, double* u_vap,
                                              char* errormsg, int errormsg_len);
/* saturation properties at pressure p and their derivatives along the saturation line */
#define ZENTROPIA_SATURATION_BUNDLES(X)                                                            \
    X(modelica_p, double p) X(modelica_p_mix, double p, double t)
#define ZENTROPIA_DECLARE_SATURATION_BUNDLE(name, ...)                                             \
    ZENTROPIA_API void zentropia_##name(__VA_ARGS__, double* d_liq, double* d_vap, double* h_liq,  \
                                        double* h_vap, double* t_sat, double* dd_liq_dp,           \
                                        double* dd_vap_dp, double* dh_liq_dp, double* dh_vap_dp,   \
                                        double* dt_sat_dp, char* errormsg, int errormsg_len);
ZENTROPIA_SATURATION_BUNDLES(ZENTROPIA_DECLARE_SATURATION_BUNDLE)

/* One entry point per property, each
       double zentropia_<name>(const char *inputspec, double input1, double input2,
                               char *errormsg, int errormsg_len);
   in the caller's units (gamma and vaporqual are dimensionless). */
/* clang-format off */
#define ZENTROPIA_SINGLE_PROPERTIES(X)                                                         \
    X(pressure) X(temperature) X(specvolume) X(density) X(enthalpy) X(entropy) X(intenergy)    \
    X(gibbsenergy) X(helmholtzenergy) X(heatcapv) X(heatcapp) X(soundspeed) X(alpha) X(beta)   \
    X(chi) X(fi) X(ksi) X(psi) X(zeta) X(theta) X(kappa) X(gamma) X(vaporqual) X(viscosity)    \
    X(thermcond) X(surftens)
/* clang-format on */
#define ZENTROPIA_DECLARE_SINGLE_PROPERTY(name)                                                    \
    ZENTROPIA_API double zentropia_##name(const char* inputspec, double input1, double input2,     \
                                          char* errormsg, int errormsg_len);
ZENTROPIA_SINGLE_PROPERTIES(ZENTROPIA_DECLARE_SINGLE_PROPERTY)

/* Composition vectors at a state, each
       void zentropia_<name>(const char *inputspec, double input1, double input2,
                             double *output, int output_len, char *errormsg, int errormsg_len);
   zentropia_<name> in the caller's component positions, zentropia_<name>_zp in the back-end's. */
#define ZENTROPIA_COMPOSITIONS(X) X(liquidcmp) X(vaporcmp) X(fugacoef)
#define ZENTROPIA_DECLARE_COMPOSITION(name)                                                        \
    ZENTROPIA_API void zentropia_##name(const char* inputspec, double input1, double input2,       \
                                        double* output, int output_len, char* errormsg,            \
                                        int errormsg_len);                                         \
    ZENTROPIA_API void zentropia_##name##_zp(const char* inputspec, double input1, double input2,  \
                                             double* output, int output_len, char* errormsg,       \
                                             int errormsg_len);
ZENTROPIA_COMPOSITIONS(ZENTROPIA_DECLARE_COMPOSITION)

/* Fluid constants (molar mass, critical temperature and pressure, temperature range), each
       double zentropia_<name>(char *errormsg, int errormsg_len);
   zentropia_<name> in the caller's units, zentropia_zp_<name> in internal units. */
#define ZENTROPIA_FLUID_CONSTANTS(X) X(mmol) X(tcrit) X(pcrit) X(tmin) X(tmax)
#define ZENTROPIA_DECLARE_FLUID_CONSTANT(name)                                                     \
    ZENTROPIA_API double zentropia_##name(char* errormsg, int errormsg_len);                       \
    ZENTROPIA_API double zentropia_zp_##name(char* errormsg, int errormsg_len);
ZENTROPIA_FLUID_CONSTANTS(ZENTROPIA_DECLARE_FLUID_CONSTANT)
ZENTROPIA_API void zentropia_allinfo(double* m_mol, double* t_crit, double* p_crit, double* t_min,
                                     double* t_max, char* errormsg, int errormsg_len);

/* the value of input targt (1 or 2) of inputspec between minval and maxval at which property
   funcspec equals funcval, the other input fixed at fixedval */
ZENTROPIA_API double zentropia_solve(const char* funcspec, double funcval, const char* inputspec,
                                     int targt, double fixedval, double minval, double maxval,
                                     char* errormsg, int errormsg_len);
/* a line of constant propspec at propval: npnts values of calcspec along runspec from minval to
   maxval, with the points where the line crosses the saturation boundary */
ZENTROPIA_API void zentropia_isoline(const char* propspec, double propval, const char* runspec,
                                     const char* calcspec, double minval, double maxval, int npnts,
                                     double* runval, int runval_len, double* calcval,
                                     int calcval_len, char* errormsg, int errormsg_len);

/* ---- Reference state (reduced values) ---------------------------------------------------- */

ZENTROPIA_API void zentropia_setrefstate(double t_ref, double p_ref, char* errormsg,
                                         int errormsg_len);
/* acts only when errormsg reads "No errors" on entry */
ZENTROPIA_API void zentropia_setrefstate_nondim(double t_ref, double p_ref, double v_ref,
                                                char* errormsg, int errormsg_len);
/* set the reference state again with its stored values (after a new fluid); without one, errormsg
   stays as it was. The _nondim form, like setrefstate_nondim, acts only when errormsg reads
   "No errors" on entry; otherwise the reference state is released. */
ZENTROPIA_API void zentropia_updaterefstate(char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_updaterefstate_nondim(char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_getrefstate(double* t_ref, double* p_ref, double* v_ref,
                                         char* errormsg, int errormsg_len);
ZENTROPIA_API int zentropia_isrefstateset(void);
ZENTROPIA_API void zentropia_releaserefstate(void);
ZENTROPIA_API double zentropia_dimnondimconvfact(const char* symbol);

/* ---- Units -------------------------------------------------------------------------------- */

/* unitset "SI", "Zentropia" or "Anglo-Saxon"; massormole "PerMass" or "PerMole"; optional
   comma-separated overrides such as propsymbol "P,T" with propunit "MPa,C". A refused unit set
   leaves every factor (1, 0), the internal units, and keeps the last accepted settings stored:
   the next conversion of a phase's value ("PT liq") re-applies those, as setunits_phase and
   updateunits do. Call setunits again after a failure. */
ZENTROPIA_API void zentropia_setunits(const char* unitset, const char* massormole,
                                      const char* propsymbol, const char* propunit, char* errormsg,
                                      int errormsg_len);
ZENTROPIA_API void zentropia_setunits_mmol(const char* unitset, const char* massormole,
                                           const char* propsymbol, const char* propunit,
                                           double mmol, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_setunits_phase(double mmol, char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_updateunits(char* errormsg, int errormsg_len);
ZENTROPIA_API void zentropia_getunits(char* unitset, int unitset_len, char* massormole,
                                      int massormole_len, char* propsymbol, int propsymbol_len,
                                      char* propunit, int propunit_len);
/* the caller's unit of one property symbol, e.g. "kJ/kg/K" */
ZENTROPIA_API void zentropia_getunit(const char* symbol, char* unit, int unit_len, char* errormsg,
                                     int errormsg_len);
/* (factor, offset) of a symbol: internal value = caller's value * factor + offset */
ZENTROPIA_API void zentropia_getunitconvfact(const char* symbol, double* cf, int cf_len);
/* Unit descriptions of the three unit sets, each
       void zentropia_<name>(const char *massormole, int *n_prop, int n_prop_len, char *prop,
                             int prop_count, int prop_width, double *power, int power_len,
                             char *unit, int unit_count, int unit_width);
   27 factor counts and 108 slots of dimension, power and unit. */
#define ZENTROPIA_UNIT_DESCRIPTIONS(X) X(getunits_si) X(getunits_zp) X(getunits_as)
#define ZENTROPIA_DECLARE_UNIT_DESCRIPTION(name)                                                   \
    ZENTROPIA_API void zentropia_##name(                                                           \
        const char* massormole, int* n_prop, int n_prop_len, char* prop, int prop_count,           \
        int prop_width, double* power, int power_len, char* unit, int unit_count, int unit_width);
ZENTROPIA_UNIT_DESCRIPTIONS(ZENTROPIA_DECLARE_UNIT_DESCRIPTION)

/* Reading unit texts: character classes, a comma-separated list into texts, a signed integer
   (string is consumed in place; msg receives "string-ok" or "string-noint") */
ZENTROPIA_API int zentropia_isalfa(char c);
ZENTROPIA_API int zentropia_isdigit(char c);
ZENTROPIA_API int zentropia_isvalid(char c);
ZENTROPIA_API int zentropia_isdigitstr(const char* string);
ZENTROPIA_API void zentropia_strtoarr(const char* string, char* array, int array_count,
                                      int array_width, int* nelmts, char* errormsg,
                                      int errormsg_len);
ZENTROPIA_API void zentropia_strtoint(char* string, int string_len, int* number, char* msg,
                                      int msg_len);

#ifdef __cplusplus
}
#endif

#endif /* ZENTROPIA_H */
