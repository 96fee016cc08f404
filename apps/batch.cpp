// zentropia batch: a CSV of states in, a CSV of properties out, streamed row by row.
#include "cli.hpp"
#include "main/zentropia_main.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
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
    // precision: significant digits of the values, 0 for the fewest that read back exactly
    block_writer(std::FILE* out, char delimiter, int precision)
        : out_(out), delimiter_(delimiter), precision_(precision) {
        text_.reserve(chunk + 4096);
    }
    block_writer(const block_writer&) = delete;
    block_writer& operator=(const block_writer&) = delete;

    void put(std::string_view s) { text_.append(s); }
    void put(char c) { text_.push_back(c); }
    // a value exactly, in the fewest digits that read back to it; nothing for a value the model
    // does not compute
    void put(double value) {
        if (zp_common::isinit(value)) return;
        char digits[40];
        text_.append(digits, format(digits, value));
    }
    // the delimiter, then the value (one append: the row loop is the tool's hot path)
    void put_delimited(double value) {
        char digits[41];
        digits[0] = delimiter_;
        text_.append(digits, zp_common::isinit(value) ? 1 : 1 + format(digits + 1, value));
    }
    void put_delimited(std::string_view s) {
        put(delimiter_);
        put(s);
    }
    // the delimiter before an empty error column and the line end
    void end_good_row() {
        const char end[2] = {delimiter_, '\n'};
        text_.append(end, 2);
        end_row_quiet();
    }
    // a value, or null for one the model does not compute (JSON)
    void put_json(double value) {
        if (zp_common::isinit(value) || !std::isfinite(value)) return put("null");
        put(value);
    }
    // a JSON string
    void put_string(std::string_view s) {
        put('"');
        for (const char c : s) {
            if (c == '"' || c == '\\') put('\\');
            if (static_cast<unsigned char>(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
                put(escaped);
            } else {
                put(c);
            }
        }
        put('"');
    }
    void delimiter() { put(delimiter_); }
    // a CSV field, quoted when it holds a delimiter, a quote or a line end
    void put_field(std::string_view s) {
        const char specials[] = {delimiter_, '"', '\r', '\n', '\0'};
        if (s.find_first_of(specials) == std::string_view::npos) return put(s);
        put('"');
        for (const char c : s) {
            if (c == '"') put('"');
            put(c);
        }
        put('"');
    }
    void end_row() {
        put('\n');
        end_row_quiet();
    }
    // flushes a full block without ending a line
    void end_row_quiet() {
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
    // the digits of value written at `to` (room for 40 characters); their count
    std::size_t format(char* to, double value) const {
        if (precision_ > 0)
            return static_cast<std::size_t>(std::snprintf(to, 40, "%.*g", precision_, value));
        return static_cast<std::size_t>(std::to_chars(to, to + 40, value).ptr - to);
    }

    std::FILE* out_;
    std::string text_;
    char delimiter_;
    int precision_;
};

// The two input fields of a row (columns counted from 0); false when the row has too few.
bool input_fields(std::string_view line, char delimiter, std::array<std::size_t, 2> columns,
                  std::array<std::string_view, 2>& fields) {
    std::size_t found = 0, column = 0;
    const std::size_t last = std::max(columns[0], columns[1]);
    for (std::size_t at = 0; column <= last; ++column) {
        const auto comma = line.find(delimiter, at);
        const auto field = zp_common::strip(line.substr(at, comma - at));
        for (int k = 0; k < 2; ++k)
            if (columns[k] == column) fields[k] = field, ++found;
        if (comma == std::string_view::npos) break;
        at = comma + 1;
    }
    return found == 2;
}

// every field of a line (for --keep)
void all_fields(std::string_view line, char delimiter, std::vector<std::string_view>& fields) {
    fields.clear();
    for (std::size_t at = 0;;) {
        const auto end = line.find(delimiter, at);
        fields.push_back(zp_common::strip(line.substr(at, end - at)));
        if (end == std::string_view::npos) return;
        at = end + 1;
    }
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
        if (n < 1 || n > 1e6 || n != static_cast<std::size_t>(n))
            throw usage_error("--columns counts columns from 1, not '" + std::string(part) + "'");
        columns[k] = static_cast<std::size_t>(n) - 1;
    }
    if (columns[0] == columns[1]) throw usage_error("--columns names one column twice");
    return columns;
}

// Each requested property comes from one of three sources: its own entry point, a column of one
// full-state evaluation of the row, or calcprop (the keywords the full state does not hold); a
// property those leave uncomputed comes from the entry point that derives it (one_answer).
class evaluator {
    static auto entry(int column) { return zp_props::properties[column].entry; }

public:
    evaluator(std::string inputspec, std::vector<std::string> keywords)
        : inputspec_(std::move(inputspec)), keywords_(std::move(keywords)),
          values_(keywords_.size()), absent_(keywords_.size()), reasons_(keywords_.size()) {
        std::size_t outputs = 0;
        for (const auto& k : keywords_) {
            columns_.push_back(zp_props::property_index(k));
            const int column = columns_.back();
            if (column < 0 || column >= static_cast<int>(zp_props::n_allprops)) continue;
            ++outputs;
            whole_state_ |= entry(column) == nullptr;
        }
        // One allprops evaluation costs about what four single-property entry points cost
        // together (IF97 water: 1 us against 0.2 to 0.4 us each).
        whole_state_ |= outputs > 3;
    }
    // the requested values at (a, b); errormsg holds the first failure
    const std::vector<double>& at(double a, double b, std::string& errormsg) {
        errormsg = zp_common::no_errors;
        if (whole_state_) allprops(a, b, errormsg);
        for (std::size_t i = 0; i < keywords_.size(); ++i) {
            const int column = columns_[i];
            if (whole_state_ && column >= 0 && column < static_cast<int>(zp_props::n_allprops)) {
                values_[i] = state_[column];
            } else {
                values_[i] =
                    column >= 0 && entry(column)
                        ? entry(column)(inputspec_, a, b, single_)
                        : zentropia_main::calcprop(keywords_[i], inputspec_, a, b, single_);
                if (zp_common::is_ok(errormsg) && !zp_common::is_ok(single_)) errormsg = single_;
            }
            if (zp_common::isinit(values_[i]) && zp_common::is_ok(errormsg)) {
                values_[i] = zp_props::one_answer(column, inputspec_, a, b, values_[i], reason_);
                if (zp_common::isinit(values_[i])) ++absent_[i], reasons_[i] = reason_;
            }
        }
        return values_;
    }
    // how often each property was not computed in a row that succeeded, and the last reason
    const std::vector<std::size_t>& absent() const { return absent_; }
    const std::vector<std::string>& reasons() const { return reasons_; }

private:
    void allprops(double a, double b, std::string& errormsg) {
        auto& r = state_;
        zentropia_main::allprops(inputspec_, a, b, r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7],
                                 x_, y_, r[8], r[9], r[10], r[11], r[12], r[13], r[14], r[15],
                                 r[16], r[17], r[18], r[19], r[20], r[21], r[22], errormsg);
    }

    std::string inputspec_;
    std::vector<std::string> keywords_;
    std::vector<int> columns_; // in zp_props::properties, -1 for other keywords
    std::vector<double> values_;
    std::vector<std::size_t> absent_;
    std::vector<std::string> reasons_;
    bool whole_state_ = false;
    std::array<double, zp_props::n_allprops> state_{};
    zp_common::composition x_{}, y_{};
    std::string single_, reason_;
};

char parse_delimiter(std::string_view text) {
    if (text == "tab" || text == "\\t" || text == "\t") return '\t';
    if (text.size() == 1 && text != "\"" && text != "\n" && text != "\r" && text != "#" &&
        text != "." && text != "-" && text != "+" && !(text[0] >= '0' && text[0] <= '9') &&
        !(text[0] >= 'a' && text[0] <= 'z') && !(text[0] >= 'A' && text[0] <= 'Z'))
        return text[0];
    throw usage_error("--delimiter is one character such as , ; | or tab, not '" +
                      std::string(text) + "'");
}

int parse_precision(std::string_view text) {
    const double n = number(text, "--precision");
    if (n < 1 || n > 17 || n != static_cast<int>(n))
        throw usage_error("--precision is a number of significant digits from 1 to 17, not '" +
                          std::string(text) + "'");
    return static_cast<int>(n);
}

} // namespace

int run_batch(const command_line& cl) {
    if (cl.arguments.size() > 1) throw usage_error("batch reads one file at most");
    const std::string inputspec = option(cl, "--inputspec", "PT");
    check_inputspec(inputspec);
    const auto columns = parse_columns(option(cl, "--columns", "1,2"));
    const char delimiter = parse_delimiter(option(cl, "--delimiter", ","));
    const int precision =
        cl.options.count("--precision") ? parse_precision(option(cl, "--precision", "")) : 0;
    const std::string format = option(cl, "--format", "csv");
    if (format != "csv" && format != "json")
        throw usage_error("--format is csv or json, not '" + format + "'");
    const bool json = format == "json", keep = cl.options.count("--keep") > 0;
    std::vector<std::string> requests;
    const std::string props = option(cl, "--props", "h,s,c");
    for (std::string_view list = props; !list.empty();) {
        const auto comma = std::min(list.find(','), list.size());
        const std::string keyword(zp_common::strip(list.substr(0, comma)));
        if (keyword.empty()) throw usage_error("--props lists an empty keyword");
        check_keyword(keyword);
        requests.push_back(keyword);
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    if (requests.empty()) throw usage_error("--props lists no property");
    select(cl.fluid);

    const std::string input = cl.arguments.empty() ? "-" : cl.arguments.front();
    file in_file = input == "-" ? file(nullptr, &std::fclose) : open(input, "rb");
    const std::string output = option(cl, "--output", "-");
    line_reader lines(in_file ? in_file.get() : stdin);
    evaluator evaluate(inputspec, requests);

    std::size_t rows = 0, failed = 0, line_number = 0;
    bool first = true;
    std::string errormsg, row_message;
    std::string_view line;
    std::array<std::string_view, 2> fields;
    std::vector<std::string_view> kept;
    std::vector<std::string> names; // of the output's fields (JSON keys)
    std::size_t width = 0;          // fields of the first line
    file out_file(nullptr, &std::fclose);
    std::unique_ptr<block_writer> writer;
    while (lines.next(line)) {
        ++line_number;
        if (zp_common::strip(line).empty() || line.starts_with('#')) continue;
        const bool complete = input_fields(line, delimiter, columns, fields);
        double a = 0.0, b = 0.0;
        const bool numbers = complete && parse_number(fields[0], a) && parse_number(fields[1], b);
        if (keep) all_fields(line, delimiter, kept);
        if (first) {
            // The first line settles the columns; nothing is written before it is checked.
            first = false;
            std::vector<std::string_view> line_fields;
            all_fields(line, delimiter, line_fields);
            width = line_fields.size();
            if (std::max(columns[0], columns[1]) >= width)
                throw usage_error("--columns " + option(cl, "--columns", "1,2") +
                                  ": the input has " + std::to_string(width) + " column" +
                                  (width == 1 ? "" : "s") +
                                  (delimiter == ',' ? "" : " (with --delimiter)"));
            const bool header =
                complete && !parse_number(fields[0], a) && !parse_number(fields[1], b);
            const std::array<std::string, 2> input_names{
                header ? std::string(fields[0]) : labelled(inputspec.substr(0, 1)),
                header ? std::string(fields[1]) : labelled(inputspec.substr(1, 1))};
            if (keep)
                for (std::size_t k = 0; k < width; ++k)
                    names.push_back(header            ? std::string(line_fields[k])
                                    : k == columns[0] ? input_names[0]
                                    : k == columns[1] ? input_names[1]
                                                      : "column " + std::to_string(k + 1));
            else
                names.assign(input_names.begin(), input_names.end());
            for (const auto& keyword : requests)
                names.push_back(json ? keyword : labelled(keyword));
            names.emplace_back("error");
            if (output != "-") out_file = open(output, "wb");
            writer = std::make_unique<block_writer>(out_file ? out_file.get() : stdout, delimiter,
                                                    precision);
            if (json) {
                writer->put("[");
            } else {
                for (std::size_t k = 0; k < names.size(); ++k) {
                    if (k) writer->delimiter();
                    writer->put_field(names[k]);
                }
                writer->end_row();
            }
            if (header) continue;
        }
        block_writer& out = *writer;
        ++rows;
        const std::vector<double>* values = nullptr;
        std::string_view message; // empty when the row succeeded
        if (numbers) {
            values = &evaluate.at(a, b, errormsg);
            if (!zp_common::is_ok(errormsg)) message = errormsg, values = nullptr;
        } else {
            row_message = "line " + std::to_string(line_number) +
                          (complete ? ": the inputs are not numbers" : ": too few columns");
            message = row_message;
        }
        if (!message.empty()) ++failed;
        // the input fields: all of them with --keep, else the two inputs
        const std::size_t n_inputs = keep ? kept.size() : 2;
        const auto input_field = [&](std::size_t k) {
            return keep ? kept[k] : complete ? fields[k] : std::string_view{};
        };
        if (json) {
            out.put(rows == 1 ? "\n{" : ",\n{");
            for (std::size_t k = 0; k < n_inputs && k < names.size() - requests.size() - 1; ++k) {
                out.put_string(names[k]), out.put(':');
                double v;
                if (parse_number(input_field(k), v))
                    out.put(input_field(k));
                else
                    out.put_string(input_field(k));
                out.put(',');
            }
            const std::size_t first_value = names.size() - requests.size() - 1;
            for (std::size_t i = 0; i < requests.size(); ++i) {
                out.put_string(names[first_value + i]), out.put(':');
                out.put_json(values ? (*values)[i] : zp_common::not_set);
                out.put(',');
            }
            out.put("\"error\":");
            if (message.empty())
                out.put("null");
            else
                out.put_string(message);
            out.put('}');
            out.end_row_quiet();
        } else {
            if (numbers && !keep) {
                out.put(fields[0]), out.put_delimited(fields[1]);
            } else {
                for (std::size_t k = 0; k < n_inputs; ++k) {
                    if (k) out.delimiter();
                    out.put_field(input_field(k));
                }
            }
            for (std::size_t i = 0; i < requests.size(); ++i)
                out.put_delimited(values ? (*values)[i] : zp_common::not_set);
            if (message.empty()) {
                out.end_good_row();
            } else {
                out.delimiter(), out.put_field(message);
                out.end_row();
            }
        }
    }
    if (!writer) { // an empty input: the header alone
        if (output != "-") out_file = open(output, "wb");
        writer = std::make_unique<block_writer>(out_file ? out_file.get() : stdout, delimiter,
                                                precision);
        if (json) {
            writer->put("[");
        } else {
            writer->put_field(labelled(inputspec.substr(0, 1))), writer->delimiter();
            writer->put_field(labelled(inputspec.substr(1, 1)));
            for (const auto& keyword : requests)
                writer->delimiter(), writer->put_field(labelled(keyword));
            writer->delimiter(), writer->put("error"), writer->end_row();
        }
    }
    if (json) writer->put("\n]\n");
    writer->flush();
    for (std::size_t i = 0; i < requests.size(); ++i)
        if (evaluate.absent()[i] > 0)
            std::fprintf(stderr, "zentropia batch: %s not computed in %zu of %zu rows (%s)\n",
                         requests[i].c_str(), evaluate.absent()[i], rows,
                         evaluate.reasons()[i].c_str());
    if (failed == 0) return exit_ok;
    std::fprintf(stderr, "zentropia batch: %zu of %zu rows failed\n", failed, rows);
    return exit_failed_rows;
}

} // namespace cli
