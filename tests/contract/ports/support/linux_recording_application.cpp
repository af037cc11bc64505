#include "support/recording.h"

#include <string_view>

int main(int argc, char** argv) {
    const lumora::contract::Recorder recorder(argv[0]);
    if (argc == 3 && std::string_view(argv[1]) == "opened") {
        recorder.opened(argv[2]);
        return 0;
    }
    recorder.launched(argc, argv);
    ::alarm(60); // should nobody end it
    ::pause();
    return 0;
}
