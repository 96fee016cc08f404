// The C API of the selection and the dispatch (zentropia_base): internal units.
#include "base/zentropia_base.hpp"
#include "capi/capi_support.hpp"
#include "zentropia/zentropia.h"

namespace zb = zentropia_base;
using namespace zp_capi;

ZP_C int zentropia_isinit(double value) {
    return quiet([&] { return zb::isinit(value); });
}

ZP_C int zentropia_isnotinit(double value) {
    return quiet([&] { return zb::isnotinit(value); });
}

ZP_C void zentropia_zpgetindex(const char* modelname, int* index, int len_modelname) {
    quiet([&] { zb::zpgetindex(text(modelname), out(index), len_modelname); });
}

ZP_C void zentropia_zpgetversion(const char* modelname, int* version, int version_len) {
    quiet([&] { zb::zpgetversion(text(modelname), array_ref<int, 4>(version, version_len)); });
}

ZP_C void zentropia_releaseobjects(void) {
    quiet([] { zb::releaseobjects(); });
}

ZP_C void zentropia_setfluid(const char* model, int in_ncmp, const char* const* in_cmp,
                             int in_cmp_len, const double* in_cnc, int in_cnc_len, char* errormsg,
                             int errormsg_len) {
    guarded_inout(errormsg, errormsg_len, [&](std::string& e) {
        zb::setfluid(text(model), in_ncmp, names(in_cmp, in_cmp_len), values(in_cnc, in_cnc_len),
                     e);
    });
}

ZP_C void zentropia_getfluid(char* model, int model_len, int* ncomp, char* comp, int comp_count,
                             int comp_width, double* conc, int conc_len) {
    quiet([&] {
        zb::getfluid(text_out(model, model_len), out(ncomp),
                     texts_out<zb::component_names>(comp, comp_count, comp_width),
                     composition_ref(conc, conc_len));
    });
}

#define ZP_DEFINE_DISPATCHER(name)                                                                 \
    ZP_C void zentropia_##name(                                                                    \
        const char* inputspec, double input1, double input2, double* p, double* t, double* v,      \
        double* d, double* h, double* s, double* u, double* q, double* usr_x, int usr_x_len,       \
        double* usr_y, int usr_y_len, double* cv, double* dpdt, double* dpdv, double* d2pdt2,      \
        double* d2pdv2, double* d2pdtdv, double* dcvdt, double* eta, double* lambda,               \
        double* sigma, char* errormsg, int errormsg_len) {                                         \
        guarded(errormsg, errormsg_len, [&](std::string& e) {                                      \
            zb::name(text(inputspec), input1, input2, out(p), out(t), out(v), out(d), out(h),      \
                     out(s), out(u), out(q), composition_ref(usr_x, usr_x_len),                    \
                     composition_ref(usr_y, usr_y_len), out(cv), out(dpdt), out(dpdv),             \
                     out(d2pdt2), out(d2pdv2), out(d2pdtdv), out(dcvdt), out(eta), out(lambda),    \
                     out(sigma), e);                                                               \
        });                                                                                        \
    }
ZENTROPIA_DISPATCHERS(ZP_DEFINE_DISPATCHER)

ZP_C double zentropia_calculate(const char* inputspec, double input1, double input2,
                                const char* outputspec, char* errormsg, int errormsg_len) {
    return guarded(errormsg, errormsg_len, [&](std::string& e) {
        return zb::calculate(text(inputspec), input1, input2, text(outputspec), e);
    });
}

ZP_C double zentropia_getinfo(const char* property, char* errormsg, int errormsg_len) {
    return guarded(errormsg, errormsg_len,
                   [&](std::string& e) { return zb::getinfo(text(property), e); });
}

ZP_C void zentropia_zp_mmolcomp(double* mmol, int mmol_len, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len,
            [&](std::string& e) { zb::zp_mmolcomp(composition_ref(mmol, mmol_len), e); });
}

ZP_C double zentropia_zp_mmol_cnc(const double* cnc, int cnc_len, char* errormsg,
                                  int errormsg_len) {
    return guarded(errormsg, errormsg_len,
                   [&](std::string& e) { return zb::zp_mmol_cnc(values(cnc, cnc_len), e); });
}

ZP_C void zentropia_zflow_tmd_vu(double* p, double* t, double* v, double* h, double* s, double* u,
                                 double* cv, double* dpdt, double* dpdv, double* d2pdt2,
                                 double* d2pdv2, double* d2pdtdv, double* dcvdt, char* errormsg,
                                 int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::zflow_tmd_vu(out(p), out(t), out(v), out(h), out(s), out(u), out(cv), out(dpdt),
                         out(dpdv), out(d2pdt2), out(d2pdv2), out(d2pdtdv), out(dcvdt), e);
    });
}

ZP_C void zentropia_zp_allpropsallphases(
    const char* inputspec, double input1, double input2, double* p, int p_len, double* t, int t_len,
    double* v, int v_len, double* d, int d_len, double* h, int h_len, double* s, int s_len,
    double* u, int u_len, double* q, double* usr_x, int usr_x_len, double* usr_y, int usr_y_len,
    double* cv, int cv_len, double* dpdt, int dpdt_len, double* dpdv, int dpdv_len, double* d2pdt2,
    int d2pdt2_len, double* d2pdv2, int d2pdv2_len, double* d2pdtdv, int d2pdtdv_len, double* dcvdt,
    int dcvdt_len, double* eta, double* lambda, char* errormsg, int errormsg_len) {
    using phases = array_ref<double, zp_adapter::max_phases>;
    guarded_inout(errormsg, errormsg_len, [&](std::string& e) {
        zb::zp_allpropsallphases(
            text(inputspec), input1, input2, phases(p, p_len), phases(t, t_len), phases(v, v_len),
            phases(d, d_len), phases(h, h_len), phases(s, s_len), phases(u, u_len), out(q),
            composition_ref(usr_x, usr_x_len), composition_ref(usr_y, usr_y_len),
            phases(cv, cv_len), phases(dpdt, dpdt_len), phases(dpdv, dpdv_len),
            phases(d2pdt2, d2pdt2_len), phases(d2pdv2, d2pdv2_len), phases(d2pdtdv, d2pdtdv_len),
            phases(dcvdt, dcvdt_len), out(eta), out(lambda), e);
    });
}

ZP_C void zentropia_zp_allpropssatext(const char* inputspec, double input1, double input2,
                                      double* p, double* t, double* v, double* d, double* h,
                                      double* s, double* u, double* q, double* usr_x, int usr_x_len,
                                      double* usr_y, int usr_y_len, double* v_liq, double* d_liq,
                                      double* h_liq, double* s_liq, double* u_liq, double* v_vap,
                                      double* d_vap, double* h_vap, double* s_vap, double* u_vap,
                                      char* errormsg, int errormsg_len) {
    guarded_inout(errormsg, errormsg_len, [&](std::string& e) {
        zb::zp_allpropssatext(text(inputspec), input1, input2, out(p), out(t), out(v), out(d),
                              out(h), out(s), out(u), out(q), composition_ref(usr_x, usr_x_len),
                              composition_ref(usr_y, usr_y_len), out(v_liq), out(d_liq), out(h_liq),
                              out(s_liq), out(u_liq), out(v_vap), out(d_vap), out(h_vap),
                              out(s_vap), out(u_vap), e);
    });
}

ZP_C void zentropia_alltransprops_zp(double t, double d, double* eta, double* eta_t, double* eta_d,
                                     double* lambda, double* lambda_t, double* lambda_d,
                                     char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::alltransprops_zp(t, d, out(eta), out(eta_t), out(eta_d), out(lambda), out(lambda_t),
                             out(lambda_d), e);
    });
}

ZP_C void zentropia_capeopenderiv_zp(const char* inputspec, double input1, double input2, double* v,
                                     double* h, double* s, double* g, double* lnphi, int lnphi_len,
                                     char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::capeopenderiv_zp(text(inputspec), input1, input2, out(v), out(h), out(s), out(g),
                             composition_ref(lnphi, lnphi_len), e);
    });
}

ZP_C void zentropia_psat_k1(double k1, double t, double* psat, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) { zb::psat_k1(k1, t, out(psat), e); });
}

ZP_C void zentropia_xy_a_alfa(double aij, double aji, double alfa, double p, double t, double* x,
                              int x_len, double* y, int y_len, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::xy_a_alfa(aij, aji, alfa, p, t, array_ref<double, 2>(x, x_len),
                      array_ref<double, 2>(y, y_len), e);
    });
}

ZP_C void zentropia_xy_kij(double kij, double p, double t, double* x, int x_len, double* y,
                           int y_len, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::xy_kij(kij, p, t, array_ref<double, 2>(x, x_len), array_ref<double, 2>(y, y_len), e);
    });
}

ZP_C void zentropia_hsxy_mp(double p, double t, double molpar, double* h_r, double* s_r, double* x,
                            int x_len, double* y, int y_len, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::hsxy_mp(p, t, molpar, out(h_r), out(s_r), composition_ref(x, x_len),
                    composition_ref(y, y_len), e);
    });
}

ZP_C void zentropia_settable(const char* tablename, const char* tabletype,
                             const char* interpolmethod, const char* meshname,
                             const char* searchalg, int phase, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::settable(text(tablename), text(tabletype), text(interpolmethod), text(meshname),
                     text(searchalg), phase, e);
    });
}

ZP_C void zentropia_settable_new(const char* tablename, const char* inputspec, double input1_min,
                                 double input1_max, double input2_min, double input2_max,
                                 double meshspacing, const char* tabletype,
                                 const char* intpolmethod, const char* searchalg, char* errormsg,
                                 int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::settable_new(text(tablename), text(inputspec), input1_min, input1_max, input2_min,
                         input2_max, meshspacing, text(tabletype), text(intpolmethod),
                         text(searchalg), e);
    });
}

ZP_C void zentropia_usetable(const char* tablename, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) { zb::usetable(text(tablename), e); });
}

ZP_C void zentropia_alltableinfo(char* sublibrary, int sublibrary_len, char* fluid, int fluid_len,
                                 char* table_type, int table_type_len, char* intpol_method,
                                 int intpol_method_len, char* search_alg, int search_alg_len,
                                 char* table_props, int table_props_len, double* x_min,
                                 double* x_max, double* y_min, double* y_max, double* mesh_space,
                                 int* nzones, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::alltableinfo(
            text_out(sublibrary, sublibrary_len), text_out(fluid, fluid_len),
            text_out(table_type, table_type_len), text_out(intpol_method, intpol_method_len),
            text_out(search_alg, search_alg_len), text_out(table_props, table_props_len),
            out(x_min), out(x_max), out(y_min), out(y_max), out(mesh_space), out(nzones), e);
    });
}

ZP_C void zentropia_getfluidnames(int longshortcas, const char* model, int* nfluid, char* fluidset,
                                  int fluidset_count, int fluidset_width, char* errormsg,
                                  int errormsg_len) {
    using names_out = texts_out<std::vector<std::string>>;
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::getfluidnames(longshortcas, text(model), out(nfluid),
                          names_out(fluidset, fluidset_count, fluidset_width), e);
    });
}

ZP_C void zentropia_getcompset(const char* model, int* ncomps, char* compset, int compset_count,
                               int compset_width, char* errormsg, int errormsg_len) {
    using names_out = texts_out<std::vector<std::string>>;
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zb::getcompset(text(model), out(ncomps), names_out(compset, compset_count, compset_width),
                       e);
    });
}

ZP_C void zentropia_readfluidstable(char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [](std::string& e) { fluidstable::readfluidstable(e); });
}

ZP_C void zentropia_tolower(const char* string, char* lowered, int lowered_len) {
    quiet([&] { put_text(lowered, lowered_len, fluidstable::tolower(text(string))); });
}

#define ZP_DEFINE_COMPOSITION_ZP(name)                                                             \
    ZP_C void zentropia_##name##_zp(const char* inputspec, double input1, double input2,           \
                                    double* output, int output_len, char* errormsg,                \
                                    int errormsg_len) {                                            \
        guarded(errormsg, errormsg_len, [&](std::string& e) {                                      \
            zb::name##_zp(text(inputspec), input1, input2, composition_ref(output, output_len),    \
                          e);                                                                      \
        });                                                                                        \
    }
ZENTROPIA_COMPOSITIONS(ZP_DEFINE_COMPOSITION_ZP)

#define ZP_DEFINE_FLUID_CONSTANT_ZP(name)                                                          \
    ZP_C double zentropia_zp_##name(char* errormsg, int errormsg_len) {                            \
        return guarded(errormsg, errormsg_len, [](std::string& e) { return zb::zp_##name(e); });   \
    }
ZENTROPIA_FLUID_CONSTANTS(ZP_DEFINE_FLUID_CONSTANT_ZP)
