// Measures everything and prints the table. Usage: qln_bench [GROUP...], the groups being start, windows,
// log and recordset; all by default. Needs an X display for the first.

#include <QApplication>
#include <algorithm>

#include "bench/rows.h"
#include "bench/workplace.h"
#include "ui/base/appearance.h"

int main(int argc, char** argv) {
    // The windows of this process are not shown; those of the processes that it starts are.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ui::applyAppearance();
    const std::vector<std::string> groups(argv + 1, argv + argc);
    const auto wanted = [&](const char* group) {
        return groups.empty() || std::find(groups.begin(), groups.end(), group) != groups.end();
    };
    const std::filesystem::path memory = "/dev/shm";
    const bench::Folder disk(std::filesystem::temp_directory_path());
    const auto fresh = [](const bench::Folder& parent, const char* name) {
        const std::filesystem::path folder = parent.path() / name;
        std::filesystem::create_directory(folder);
        return folder;
    };
    bench::Table table;
    if (wanted("start"))
        bench::startRows(table, fresh(disk, "start"));
    if (wanted("windows")) {
        bench::windowRows(table, fresh(disk, "windows"));
        bench::answerRows(table, fresh(disk, "answers"));
    }
    if (wanted("log"))
        bench::logRows(table, fresh(disk, "log"));
    if (wanted("recordset")) {
        bench::recordsetRows(table, fresh(disk, "recordset"), "disk");
        // Without the disk's own time the difference shows that it hides.
        if (std::filesystem::is_directory(memory)) {
            const bench::Folder inMemory(memory);
            bench::recordsetRows(table, inMemory.path(), "memory");
        }
    }
    table.print();
    return 0;
}
