// Fluid selection and what reaches the back-ends. A recording adapter stands in for the back-ends
// that are not shipped, so the arguments they would receive can be observed.
#include "base/fluids_table_file.hpp"
#include "base/zentropia_base.hpp"
#include "main/zentropia_thermo.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace zb = zentropia_base;
using zp_common::composition;
using zp_models::model_id;

namespace {

// What the recording adapter received and answers.
struct recording {
    int setfluid_calls = 0, uninit_calls = 0;
    std::string inputspec, outputspec, property;
    std::vector<std::string> comp;
    std::vector<double> conc;
    double value1 = 0, value2 = 0;
    std::string setfluid_answer = "No errors";
} rec;

void fake_setfluid(std::string_view, int ncomp, std::span<const std::string> comp,
                   std::span<const double> conc, std::string& errormsg) {
    ++rec.setfluid_calls;
    rec.comp.assign(comp.begin(), comp.begin() + ncomp);
    rec.conc.assign(conc.begin(), conc.begin() + ncomp);
    errormsg = rec.setfluid_answer;
}
void fake_getfluid(int& ncomp, zp_adapter::component_names& comp, composition& conc) {
    ncomp = 1, comp[0] = "fake fluid", conc[0] = 1.0;
}
double fake_getinfo(std::string_view property, std::string& errormsg) {
    rec.property = property;
    errormsg = "No errors";
    if (property == "M_mol") return 0.1;
    if (property.starts_with("M_mol_")) return 0.01 * std::stoi(std::string(property.substr(6)));
    errormsg = "Error in Fake: no " + std::string(property);
    return 0.0;
}
double fake_prop(std::string_view inputspec, double value1, double value2,
                 std::string_view outputspec, std::string& errormsg) {
    rec.inputspec = inputspec, rec.outputspec = outputspec;
    errormsg = "No errors";
    return value1 + value2;
}
// x[i] = 0.1 (i + 1), y[i] = 0.5 + 0.1 (i + 1) for every entry; sigma untouched
void fake_allprops(std::string_view inputspec, double value1, double value2, double& p, double&,
                   double&, double&, double&, double&, double&, double&, composition& x,
                   composition& y, composition&, double&, double&, double&, double&, double&,
                   double&, double&, double&, double&, double&, std::string& errormsg) {
    rec.inputspec = inputspec, rec.value1 = value1, rec.value2 = value2;
    p = value1;
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = 0.1 * double(i + 1), y[i] = 0.5 + x[i];
    errormsg = "No errors";
}
void fake_zflow(double& p, double&, double v, double&, double&, double u, double&, double&, double&,
                double&, double&, double&, double&, std::string& errormsg) {
    p = v * u;
    errormsg = "No errors";
}

constexpr zp_adapter::operations fake = [] {
    zp_adapter::operations o{};
    o.model = "Fake", o.installed = true, o.zp_sub = [] {};
    o.getversion = [](zp_adapter::version_numbers&) {};
    o.uninit = [] { ++rec.uninit_calls; };
    o.setfluid = &fake_setfluid, o.getfluid = &fake_getfluid, o.getinfo = &fake_getinfo;
    o.prop = &fake_prop, o.allprops = &fake_allprops, o.zflow_vu = &fake_zflow;
    return o;
}();
// A fake that offers only the full state, for models that reach it through allthermophys.
constexpr zp_adapter::operations fake_allprops_only = [] {
    auto o = fake;
    o.getfluid = nullptr, o.getinfo = nullptr, o.prop = nullptr, o.zflow_vu = nullptr;
    return o;
}();

// A name table in which the recording back-ends know water, ethanol and methanol under their
// own names; RefProp lacks propane.
void load_test_table() {
    std::string e;
    fluidstable::readfluidstable_file(
        write_fluids_table("setfluid_table.txt",
                           {"water H2O 7732-18-5 - VM_water - RP_water - PC_water",
                            "ethanol EtOH 64-17-5 - VM_ethanol - RP_ethanol - PC_ethanol",
                            "methanol MeOH 67-56-1 - VM_methanol - RP_methanol - -",
                            "propane C3 74-98-6 - VM_propane - - - PC_propane"}),
        e);
    ASSERT_EQ(e, "No errors");
}

using names = std::vector<std::string>;
using concs = std::vector<double>;

std::string select(std::string_view model, const names& cmp, const concs& cnc,
                   std::string errormsg = "") {
    zb::setfluid(model, static_cast<int>(cmp.size()), cmp, cnc, errormsg);
    return errormsg;
}

class Setfluid : public testing::Test {
protected:
    static constexpr model_id faked[] = {model_id::refprop, model_id::varimol, model_id::pcp_saft,
                                         model_id::spcp_saft, model_id::critova};
    void SetUp() override {
        load_test_table();
        rec = recording{};
        for (auto id : faked)
            previous.push_back(zp_models::replace_adapter(
                id, id == model_id::critova ? &fake_allprops_only : &fake));
    }
    void TearDown() override {
        for (std::size_t i = 0; i < std::size(faked); ++i)
            zp_models::replace_adapter(faked[i], previous[i]);
    }
    std::vector<const zp_adapter::operations*> previous;
};

} // namespace

TEST_F(Setfluid, ModelTextsInAnyCaseAndTableModels) {
    const std::string not_installed = "Error in Mesheq: back-end library not installed.";
    struct {
        const char *text, *modelname, *sublibrary, *alias;
        bool islut;
        std::string errormsg;
    } const cases[] = {
        {"REFPROP", "RefProp", "RefProp", "RefProp", false, "No errors"},
        {"refprop                        ", "RefProp", "RefProp", "RefProp", false, "No errors"},
        {"spcp-saft", "sPCP-SAFT", "sPCP-SAFT", "sPCP-SAFT", false, "No errors"},
        {"MSH_refprop", "Msh_RefProp", "RefProp", "Mesheq", true, not_installed},
        {"NH3-H2O", "NH3-H2O", "NH3-H2O", "NH3-H2O", false, "No errors"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(select(c.text, {"water"}, {1.0}), c.errormsg) << c.text;
        const auto& s = zb::selection();
        EXPECT_EQ(s.modelname + s.sublibrary + s.modelalias,
                  std::string(c.modelname) + c.sublibrary + c.alias)
            << c.text;
        EXPECT_EQ(s.islut, c.islut) << c.text;
    }
}

// A text that names no model is refused; the model selected before stays as the dispatch key
// and the components become the placeholder.
TEST_F(Setfluid, UnknownModelTexts) {
    const std::string invalid = "Error in Zentropia: invalid model name";
    struct {
        std::string text, errormsg;
    } const cases[] = {
        {"ref prop", invalid + " ref prop"},
        {std::string(300, 'x'), invalid + " " + std::string(20, 'x')},
        {"", invalid},
        {"Zentropia", invalid + " Zentropia"},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(select("RefProp", {"water", "ethanol"}, {0.5, 0.5}), "No errors");
        EXPECT_EQ(select(c.text, {"water"}, {1.0}), c.errormsg);
        EXPECT_EQ(zb::selection().modelname, "RefProp");
        EXPECT_EQ(zb::selection().usr_ncmp, 1);
        EXPECT_EQ(zb::selection().usr_cmp[19], "xxx");
        EXPECT_EQ(zb::selection().usr_cnc[19], 1.0);
    }
    // a table prefix with nothing after it still makes a (failed) table selection
    EXPECT_EQ(select("msh_", {"water"}, {1.0}), invalid);
    EXPECT_EQ(zb::selection().modelname, "Msh_");
    EXPECT_EQ(zb::selection().modelalias, "Mesheq");
}

TEST_F(Setfluid, SameFluidOnlyWhenTheCallerPassesItsSuccessText) {
    const names we{"water", "ethanol"}, wm{"water", "methanol"};
    EXPECT_EQ(select("RefProp", we, {0.3, 0.7}), "No errors");
    EXPECT_EQ(select("RefProp", we, {0.3, 0.7}, "No errors"), "Same fluid");
    EXPECT_EQ(rec.setfluid_calls, 1);
    EXPECT_EQ(select("RefProp", we, {0.3, 0.7}, "Same fluid"), "No errors");
    EXPECT_EQ(select("RefProp", we, {0.3, 0.70000001}, "No errors"), "No errors");
    EXPECT_EQ(select("RefProp", wm, {0.3, 0.70000001}, "No errors"), "No errors");
    // the model text differs from the stored canonical name
    EXPECT_EQ(select("refprop", wm, {0.3, 0.70000001}, "No errors"), "No errors");
    EXPECT_EQ(rec.setfluid_calls, 5);
    // IF97 always describes water
    EXPECT_EQ(select("IF97", {"anything"}, {1.0}), "Same fluid");
}

// What reaches a back-end: components of zero concentration stay away except for the Varimol
// models; names are translated except for the back-ends that take the caller's names.
TEST_F(Setfluid, ComponentsHandedToTheBackEnd) {
    struct {
        const char* model;
        names cmp;
        concs cnc;
        names received;
        concs received_conc;
    } const cases[] = {
        // clang-format off
        {"RefProp", {"Water", "ethanol", "64-17-5"}, {0.5, 0, 0.5},
                    {"RP_water", "RP_ethanol"}, {0.5, 0.5}},
        {"RefProp", {"water", "ethanol"}, {1e-12, 1.0}, {"RP_ethanol"}, {1.0}},
        {"Varimol", {"water", "ETHANOL", "methanol"}, {0.5, 0.0, 0.5},
                    {"VM_water", "VM_ethanol", "VM_methanol"}, {0.5, 0.0, 0.5}},
        {"PCP-SAFT", {"H2O", "propane"}, {0.5, 0.5}, {"H2O", "propane"}, {0.5, 0.5}},
        {"sPCP-SAFT", {"water", "propane"}, {0.25, 0.75}, {"water", "propane"}, {111.25, 0.75}},
        {"RefProp", {"water"}, {0.0}, {"RP_water"}, {0.0}}, // a lone component always passes
        // clang-format on
    };
    for (const auto& c : cases) {
        EXPECT_EQ(select(c.model, c.cmp, c.cnc), "No errors") << c.model;
        EXPECT_EQ(rec.comp, c.received) << c.model;
        EXPECT_EQ(rec.conc, c.received_conc) << c.model;
        EXPECT_EQ(zb::selection().ncmps, static_cast<int>(c.received.size())) << c.model;
        EXPECT_EQ(zb::selection().usr_ncmp, static_cast<int>(c.cmp.size())) << c.model;
    }
}

TEST_F(Setfluid, FailedSelectionsLeaveThePlaceholder) {
    struct {
        const char* model;
        names cmp;
        concs cnc;
        const char *answer, *errormsg;
    } const cases[] = {
        // clang-format off
        {"RefProp", {"water"}, {1.0}, "Error in RefProp: boom", "Error in RefProp: boom"},
        {"RefProp", {"propane", "water", "unobtainium"}, {0.2, 0.3, 0.5}, "No errors",
                    "Component(s), propane, unobtainium not found..."},
        {"PCP-SAFT", {"methanol"}, {1.0}, "No errors", "Component(s), methanol not found..."},
        {"RefProp", {"water", "ethanol"}, {0.0, 1e-13}, "No errors",
                    "Error in Zentropia: every concentration is zero"},
        // clang-format on
    };
    for (const auto& c : cases) {
        rec.setfluid_answer = c.answer;
        EXPECT_EQ(select(c.model, c.cmp, c.cnc), c.errormsg);
        const auto& s = zb::selection();
        EXPECT_EQ(s.modelname, c.model); // the new model stays selected
        EXPECT_EQ(s.usr_ncmp, 1);
        EXPECT_EQ(s.ncmps, 1);
        for (int i = 0; i < 20; ++i) EXPECT_TRUE(s.usr_cmp[i] == "xxx" && s.usr_cnc[i] == 1.0);
    }
    rec.setfluid_answer = "No errors";
    EXPECT_EQ(select("RefProp", {"water"}, {1.0}), "No errors");
    EXPECT_EQ(zb::selection().usr_cmp[0], "water");
}

TEST_F(Setfluid, BadInputIsRefusedAndTheNextCallWorks) {
    const std::string name256(256, 'a');
    const names two{"water", "ethanol"};
    struct {
        int ncmp;
        names cmp;
        concs cnc;
        std::string errormsg; // after "Error in Zentropia: "
    } const cases[] = {
        {0, {"water"}, {1.0}, "number of components 0 outside 1 to 20"},
        {21, names(21, "water"), concs(21, 0.05), "number of components 21 outside 1 to 20"},
        {3, two, {0.2, 0.3, 0.5}, "3 components announced but 2 names and 3 concentrations given"},
        {2, two, {1.0}, "2 components announced but 2 names and 1 concentrations given"},
        {2, {"water", name256 + "a"}, {0.5, 0.5}, "name of component 2 longer than 256 characters"},
        {2, two, {0.5, std::nan("")}, "concentration of component 2 is not a finite number"},
        {2, two, {1.5, -0.5}, "concentration of component 2 is negative"},
    };
    for (const auto& c : cases) {
        std::string errormsg = "No errors";
        zb::setfluid("RefProp", c.ncmp, c.cmp, c.cnc, errormsg);
        EXPECT_EQ(errormsg, "Error in Zentropia: " + c.errormsg) << c.ncmp;
        EXPECT_EQ(zb::selection().usr_cmp[0], "xxx");
        EXPECT_EQ(select("RefProp", two, {0.5, 0.5}), "No errors");
    }
    // 20 components and names of 256 characters are accepted
    EXPECT_EQ(select("IF97", names(20, name256), concs(20, 0.05)), "Same fluid");
    EXPECT_EQ(zb::selection().usr_ncmp, 20);
}

TEST_F(Setfluid, GetfluidAsTheBackEndOrTheCallerHoldsIt) {
    std::string model;
    int ncomp = 0;
    std::array<std::string, 20> comp;
    composition conc{};
    select("RefProp", {"water", "ethanol"}, {0.4, 0.6});
    zb::getfluid(model, ncomp, comp, conc);
    EXPECT_EQ(model + " " + comp[0], "RefProp fake fluid");
    EXPECT_EQ(ncomp, 1);
    // PCP-SAFT describes the fluid by its parameters: the caller's selection is reported
    select("PCP-SAFT", {"water", "propane"}, {0.4, 0.6});
    zb::getfluid(model, ncomp, comp, conc);
    EXPECT_EQ(model + " " + comp[1] + "|" + comp[2], "PCP-SAFT propane|");
    EXPECT_EQ(ncomp, 2);
    EXPECT_EQ(conc[1], 0.6);
    select("IF97", {"water"}, {1.0});
    zb::getfluid(model, ncomp, comp, conc);
    EXPECT_EQ(model + " " + comp[0] + comp[1] + comp[19], "IF97 H2O??");
    EXPECT_EQ(ncomp, 1);
    EXPECT_EQ(conc[0], 1.0);
    EXPECT_EQ(conc[19], 0.0);
}

// The back-end's compositions come back at the caller's component positions.
TEST_F(Setfluid, CompositionsAreSpreadOverTheCallersComponents) {
    struct {
        const char* model;
        concs cnc;
        std::array<double, 4> x;
    } const cases[] = {
        {"RefProp", {0.0, 0.5, 0.5, 0.0}, {0.0, 0.1, 0.2, 0.0}},
        {"Varimol", {0.5, 0.0, 0.5, 0.0}, {0.1, 0.2, 0.3, 0.4}},
        {"PCP-SAFT", {0.2, 0.2, 0.6, 0.0}, {0.1, 0.2, 0.3, 0.0}},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(select(c.model, {"water", "ethanol", "water", "ethanol"}, c.cnc), "No errors");
        for (auto* evaluate : {&zb::allthermophys, &zb::allthermophyssu2}) {
            double a = 0, sigma = 1.0;
            composition x{}, y{};
            x.fill(9.0);
            std::string e;
            evaluate("PT", 2.0, 30.0, a, a, a, a, a, a, a, a, x, y, a, a, a, a, a, a, a, a, a,
                     sigma, e);
            EXPECT_EQ(e, "No errors");
            for (int i = 0; i < 4; ++i) {
                EXPECT_NEAR(x[i], c.x[i], 1e-15) << c.model << " component " << i;
                EXPECT_NEAR(y[i], c.x[i] == 0.0 ? 0.0 : c.x[i] + 0.5, 1e-15) << c.model;
            }
            EXPECT_EQ(x[4], 9.0);           // beyond the caller's components nothing is written
            EXPECT_TRUE(zb::isinit(sigma)); // the back-end computes no surface tension
        }
    }
}

// A concentration at the threshold is absent both when the fluid is handed to the back-end and
// when the back-end's compositions are spread back, whichever output spreads them.
TEST_F(Setfluid, ThresholdConcentrationIsAbsentEverywhere) {
    static constexpr auto liquid = [](std::string_view, double, double, composition& x,
                                      std::string& errormsg) {
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = 0.1 * double(i + 1);
        errormsg = "No errors";
    };
    static constexpr zp_adapter::operations with_liquid = [] {
        auto o = fake;
        o.liquidcmp = liquid;
        return o;
    }();
    zp_models::replace_adapter(model_id::refprop, &with_liquid);
    struct {
        double middle;
        std::size_t passed;
        std::array<double, 3> x;
    } const cases[] = {
        {0.0, 2, {0.1, 0.0, 0.2}},
        {1e-12, 2, {0.1, 0.0, 0.2}},
        {std::nextafter(1e-12, 1.0), 3, {0.1, 0.2, 0.3}},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(select("RefProp", {"water", "ethanol", "methanol"}, {0.5, c.middle, 0.5}),
                  "No errors");
        EXPECT_EQ(rec.conc.size(), c.passed) << c.middle;
        double a = 0;
        composition x{}, y{}, liq{};
        std::string e;
        zb::allthermophys("PT", 2.0, 30.0, a, a, a, a, a, a, a, a, x, y, a, a, a, a, a, a, a, a, a,
                          a, e);
        zentropia_thermo::zp_liquidcmp("PT", 2.0, 30.0, liq, e);
        EXPECT_EQ(e, "No errors");
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(x[i], c.x[i], 1e-15) << c.middle << " component " << i;
            EXPECT_NEAR(liq[i], c.x[i], 1e-15) << c.middle << " component " << i;
        }
    }
}

TEST_F(Setfluid, EvaluationsReachTheAdapterWithTheCallersArguments) {
    ASSERT_EQ(select("RefProp", {"water"}, {1.0}), "No errors");
    std::string e;
    EXPECT_EQ(zb::calculate("Ph", 2.5, 100.0, "cp", e), 102.5);
    EXPECT_EQ(rec.inputspec + rec.outputspec, "Phcp");
    EXPECT_EQ(zb::zp_tcrit(e), 0.0);
    EXPECT_EQ(e, "Error in Fake: no T_crit");
    const std::pair<double (*)(std::string&), const char*> keywords[] = {{&zb::zp_mmol, "M_mol"},
                                                                         {&zb::zp_pcrit, "P_crit"},
                                                                         {&zb::zp_tmin, "T_min"},
                                                                         {&zb::zp_tmax, "T_max"}};
    for (const auto& [info, keyword] : keywords) {
        info(e);
        EXPECT_EQ(rec.property, keyword);
    }
    // a back-end with its own (v, u) state, and one reached through the full state with "vu"
    double p = 0, v = 0.5, u = 300.0, a = 0;
    zb::zflow_tmd_vu(p, a, v, a, a, u, a, a, a, a, a, a, a, e);
    EXPECT_EQ(e, "No errors");
    EXPECT_EQ(p, 150.0);
    ASSERT_EQ(select("Critova", {"water"}, {1.0}), "No errors");
    zb::zflow_tmd_vu(p, a, v, a, a, u, a, a, a, a, a, a, a, e);
    EXPECT_EQ(e, "No errors");
    EXPECT_EQ(rec.inputspec, "vu");
    EXPECT_EQ(std::pair(rec.value1, rec.value2), std::pair(0.5, 300.0));
    EXPECT_EQ(p, 0.5);
}

TEST_F(Setfluid, NonFiniteStatesAreRefused) {
    ASSERT_EQ(select("RefProp", {"water"}, {1.0}), "No errors");
    // only the values that are not numbers are named: the others are in internal units here
    const std::string refused = "Error in Zentropia: input values must be finite numbers, ";
    std::string e;
    EXPECT_EQ(zb::calculate("PT", std::nan(""), 20.0, "h", e), -8888.8);
    EXPECT_EQ(e, refused + "input 1 is nan");
    zb::calculate("PT", INFINITY, -INFINITY, "h", e);
    EXPECT_EQ(e, refused + "inputs 1 and 2 are inf and -inf");
    double p = 7, a = 0, sigma = 0;
    composition x{}, y{};
    zb::allthermophys("PT", 1.0, -INFINITY, p, a, a, a, a, a, a, a, x, y, a, a, a, a, a, a, a, a, a,
                      sigma, e);
    EXPECT_EQ(e, refused + "input 2 is -inf");
    EXPECT_EQ(p, 7);
    double v = INFINITY, u = 1;
    zb::zflow_tmd_vu(p, a, v, a, a, u, a, a, a, a, a, a, a, e);
    EXPECT_EQ(e, refused + "input 1 is inf");
    EXPECT_EQ(zb::calculate("PT", 1.0, 20.0, "h", e), 21.0);
    EXPECT_EQ(e, "No errors");
}

TEST_F(Setfluid, InputSpecificationsWithJunkAreRefused) {
    ASSERT_EQ(select("RefProp", {"water"}, {1.0}), "No errors");
    std::string e;
    for (const std::string_view inputspec :
         {"PT", "PT    ", "PT liq", "Pq_vap", "PTxvap", "PT 1ph"}) {
        EXPECT_EQ(zb::calculate(inputspec, 1.0, 20.0, "h", e), 21.0) << inputspec;
        EXPECT_EQ(e, "No errors") << inputspec;
    }
    const std::string long_junk = "PT" + std::string(100000, 'x');
    for (const std::string_view inputspec :
         {std::string_view("PTjunk"), std::string_view("PTliq"), std::string_view("PT liquid"),
          std::string_view("PT liqx"), std::string_view("P"), std::string_view(long_junk)}) {
        EXPECT_EQ(zb::calculate(inputspec, 1.0, 20.0, "h", e), -8888.8) << inputspec;
        EXPECT_TRUE(e.starts_with("Error in Zentropia: input specification \"")) << e;
        EXPECT_LT(e.size(), 200u);
    }
}

TEST_F(Setfluid, MolarMassesOfTheComponentsAndOfAMixture) {
    std::string e;
    ASSERT_EQ(select("RefProp", {"water"}, {1.0}), "No errors");
    EXPECT_EQ(zb::zp_mmol_cnc(std::vector<double>{0.3}, e), 0.1);
    // components 1 and 3 reach the back-end as its components 1 and 2
    ASSERT_EQ(select("RefProp", {"water", "ethanol", "methanol"}, {0.5, 0.0, 0.5}), "No errors");
    composition mmol{};
    mmol.fill(5.0);
    zb::zp_mmolcomp(mmol, e);
    EXPECT_EQ(e, "No errors");
    EXPECT_DOUBLE_EQ(mmol[0], 0.01);
    EXPECT_EQ(mmol[1], 0.0);
    EXPECT_DOUBLE_EQ(mmol[2], 0.02);
    EXPECT_EQ(mmol[3], 0.0);
    EXPECT_DOUBLE_EQ(zb::zp_mmol_cnc(std::vector<double>{0.25, 0.0, 0.75}, e), 0.0175);
    EXPECT_EQ(zb::zp_mmol_cnc(std::vector<double>{0.0, 0.0, -1.0}, e), -8888.8);
    EXPECT_EQ(e, "Error in Zentropia: composition without a positive amount");
}

TEST_F(Setfluid, ReleaseReachesTheBackEnds) {
    ASSERT_EQ(select("RefProp", {"water"}, {1.0}), "No errors");
    zb::releaseobjects();
    // PCP-SAFT, RefProp, Critova and Varimol are served by the recording adapters; sPCP-SAFT
    // shares the PCP-SAFT back-end and is released with it
    EXPECT_EQ(rec.uninit_calls, 4);
}
