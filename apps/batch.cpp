// zentropia batch: a CSV of states in, a CSV of properties out, streamed row by row.
#include "cli.hpp"
#include "main/zentropia_main.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>

namespace cli {

namespace {

constexpr std::size_t chunk = std::size_t{1} << 20; // bytes read or written at a time

using file = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

file open(const std::string& name, const char* mode) {
    std::FILE* f = std::fopen(name.c_str(), mode);
    if (f == nullptr) throw std::runtime_error("cannot open " + name + ": " + std::strerror(errno));
    return {f, &std::fclose};
}

// The lines of a stream, read in large chunks; memory grows only with the longest line.
class line_reader {
public:
    explicit line_reader(std::FILE* in) : in_(in), buffer_(chunk) {}

    // the next line without its line end; false at the end of the input
    bool next(std::string_view& line) {
        for (;;) {
            const auto newline = std::find(buffer_.begin() + begin_, buffer_.begin() + end_, '\n');
            if (newline != buffer_.begin() + end_) {
                line = take(static_cast<std::size_t>(newline - buffer_.begin()), 1);
                return true;
            }
            if (eof_) {
                if (begin_ == end_) return false;
                line = take(end_, 0);
                return true;
            }
            refill();
        }
    }

private:
    std::string_view take(std::size_t stop, std::size_t skip) {
        std::string_view line(buffer_.data() + begin_, stop - begin_);
        begin_ = stop + skip;
        if (line.ends_with('\r')) line.remove_suffix(1);
        return line;
    }
    void refill() {
        std::copy(buffer_.begin() + begin_, buffer_.begin() + end_, buffer_.begin());
        end_ -= begin_;
        begin_ = 0;
        if (end_ == buffer_.size()) buffer_.resize(2 * buffer_.size()); // a very long line
        end_ += std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, in_);
        if (end_ < buffer_.size()) {
            if (std::ferror(in_)) throw std::runtime_error("read error on the input");
            eof_ = std::feof(in_) != 0;
        }
    }

    std::FILE* in_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0, end_ = 0;
    bool eof_ = false;
};

// Output collected in large blocks.
class block_writer {
public:
    explicit block_writer(std::FILE* out) : out_(out) { text_.reserve(chunk + 4096); }
    block_writer(const block_writer&) = delete;
    block_writer& operator=(const block_writer&) = delete;

    void put(std::string_view s) { text_.append(s); }
    void put(char c) { text_.push_back(c); }
    // a value exactly, in the fewest digits that read back to it; nothing for a value the model
    // does not compute
    void put(double value) {
        if (zp_common::isinit(value)) return;
        char digits[32];
        text_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    }
    // a CSV field, quoted when it holds a separator, a quote or a line end
    void put_field(std::string_view s) {
        if (s.find_first_of(",\"\r\n") == std::string_view::npos) return put(s);
        put('"');
        for (const char c : s) {
            if (c == '"') put('"');
            put(c);
        }
        put('"');
    }
    void end_row() {
        put('\n');
        if (text_.size() >= chunk) flush();
    }
    void flush() {
        if (!text_.empty() && std::fwrite(text_.data(), 1, text_.size(), out_) != text_.size())
            throw std::runtime_error(std::string("write error on the output: ") +
                                     std::strerror(errno));
        text_.clear();
        std::fflush(out_);
    }

private:
    std::FILE* out_;
    std::string text_;
};

// The two input fields of a row (columns counted from 0); false when the row has too few.
bool input_fields(std::string_view line, std::array<std::size_t, 2> columns,
                  std::array<std::string_view, 2>& fields) {
    std::size_t found = 0, column = 0;
    const std::size_t last = std::max(columns[0], columns[1]);
    for (std::size_t at = 0; column <= last; ++column) {
        const auto comma = line.find(',', at);
        const auto field = zp_common::strip(line.substr(at, comma - at));
        for (int k = 0; k < 2; ++k)
            if (columns[k] == column) fields[k] = field, ++found;
        if (comma == std::string_view::npos) break;
        at = comma + 1;
    }
    return found == 2;
}

bool parse_number(std::string_view field, double& value) {
    const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
    return !field.empty() && ec == std::errc() && end == field.data() + field.size();
}

std::array<std::size_t, 2> parse_columns(std::string_view text) {
    const auto comma = text.find(',');
    std::array<std::size_t, 2> columns{};
    for (int k = 0; k < 2; ++k) {
        const auto part = k == 0 ? text.substr(0, comma)
                                 : (comma == std::string_view::npos ? std::string_view{}
                                                                    : text.substr(comma + 1));
        const double n = number(part, "--columns");
        // (NaN fails every comparison: it must not reach the conversion to an index)
        if (!(n >= 1 && n <= 1e6) || n != static_cast<std::size_t>(n))
            throw usage_error("--columns counts columns from 1, not '" + std::string(part) + "'");
        columns[k] = static_cast<std::size_t>(n) - 1;
    }
    if (columns[0] == columns[1]) throw usage_error("--columns names one column twice");
    return columns;
}

// Each requested property comes from one of three sources: its own entry point, a column of one
// allprops evaluation of the row, or calcprop (the keywords allprops does not return).
class evaluator {
    static auto entry(int column) { return zentropia::allprops_outputs[column].entry; }

public:
    evaluator(std::string inputspec, std::vector<std::string> keywords)
        : inputspec_(std::move(inputspec)), keywords_(std::move(keywords)),
          values_(keywords_.size()) {
        std::size_t outputs = 0;
        for (const auto& k : keywords_) {
            columns_.push_back(zentropia::allprops_output_index(k));
            if (columns_.back() < 0) continue;
            ++outputs;
            whole_state_ |= entry(columns_.back()) == nullptr;
        }
        // One allprops evaluation costs about what four single-property entry points cost
        // together (IF97 water: 1 us against 0.2 to 0.4 us each).
        whole_state_ |= outputs > 3;
    }
    // the requested values at (a, b); errormsg holds the first failure
    const std::vector<double>& at(double a, double b, std::string& errormsg) {
        errormsg = zp_common::no_errors;
        if (whole_state_) allprops(inputspec_, a, b, state_, x_, y_, errormsg);
        for (std::size_t i = 0; i < keywords_.size(); ++i) {
            const int column = columns_[i];
            if (column >= 0 && whole_state_) {
                values_[i] = state_[column];
                continue;
            }
            values_[i] = column >= 0
                             ? entry(column)(inputspec_, a, b, single_)
                             : zentropia_main::calcprop(keywords_[i], inputspec_, a, b, single_);
            if (zp_common::is_ok(errormsg) && !zp_common::is_ok(single_)) errormsg = single_;
        }
        return values_;
    }

private:
    std::string inputspec_;
    std::vector<std::string> keywords_;
    std::vector<int> columns_; // in zentropia::allprops_outputs, -1 for other keywords
    std::vector<double> values_;
    bool whole_state_ = false;
    std::array<double, n_allprops> state_{};
    zp_common::composition x_{}, y_{};
    std::string single_;
};

} // namespace

int run_batch(const command_line& cl) {
    if (cl.arguments.size() > 1) throw usage_error("batch reads one file at most");
    const std::string inputspec = option(cl, "--inputspec", "PT");
    if (inputspec.size() < 2) throw usage_error("--spec wants two property symbols, such as PT");
    const auto columns = parse_columns(option(cl, "--columns", "1,2"));
    std::vector<std::string> requests;
    const std::string props = option(cl, "--props", "h,s,c");
    for (std::string_view list = props; !list.empty();) {
        const auto comma = std::min(list.find(','), list.size());
        const std::string keyword(zp_common::strip(list.substr(0, comma)));
        if (keyword.empty()) throw usage_error("--props lists an empty keyword");
        requests.push_back(keyword);
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    if (requests.empty()) throw usage_error("--props lists no property");
    select(cl.fluid);

    const std::string input = cl.arguments.empty() ? "-" : cl.arguments.front();
    file in_file = input == "-" ? file(nullptr, &std::fclose) : open(input, "rb");
    const std::string output = option(cl, "--output", "-");
    file out_file = output == "-" ? file(nullptr, &std::fclose) : open(output, "wb");
    line_reader lines(in_file ? in_file.get() : stdin);
    block_writer out(out_file ? out_file.get() : stdout);
    evaluator evaluate(inputspec, requests);

    std::size_t rows = 0, failed = 0, line_number = 0;
    bool first = true;
    std::string errormsg;
    std::string_view line;
    std::array<std::string_view, 2> fields;
    while (lines.next(line)) {
        ++line_number;
        if (zp_common::strip(line).empty() || line.starts_with('#')) continue;
        const bool complete = input_fields(line, columns, fields);
        double a = 0.0, b = 0.0;
        const bool numbers = complete && parse_number(fields[0], a) && parse_number(fields[1], b);
        if (first) {
            first = false;
            const bool header =
                complete && !parse_number(fields[0], a) && !parse_number(fields[1], b);
            out.put_field(header ? fields[0] : inputspec.substr(0, 1));
            out.put(',');
            out.put_field(header ? fields[1] : inputspec.substr(1, 1));
            for (const auto& keyword : requests) out.put(','), out.put_field(keyword);
            out.put(",error");
            out.end_row();
            if (header) continue;
        }
        ++rows;
        if (numbers) {
            const auto& values = evaluate.at(a, b, errormsg);
            out.put(fields[0]), out.put(','), out.put(fields[1]);
            const bool ok = zp_common::is_ok(errormsg);
            for (const double v : values) {
                out.put(',');
                if (ok) out.put(v);
            }
            out.put(',');
            if (!ok) out.put_field(errormsg), ++failed;
        } else {
            ++failed;
            out.put_field(complete ? fields[0] : ""), out.put(','),
                out.put_field(complete ? fields[1] : "");
            for (std::size_t i = 0; i < requests.size(); ++i) out.put(',');
            out.put(',');
            out.put_field("line " + std::to_string(line_number) +
                          (complete ? ": the inputs are not numbers" : ": too few columns"));
        }
        out.end_row();
    }
    out.flush();
    if (failed == 0) return exit_ok;
    std::fprintf(stderr, "zentropia batch: %zu of %zu rows failed\n", failed, rows);
    return exit_failed_rows;
}

} // namespace cli
