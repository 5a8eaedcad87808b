#include "platform/StatusSink.h"

#include "platform/modDialogs.h"

namespace {

class QuietSink final : public StatusSink {
public:
    int ask(const QString&, int style, const QString&) override {
        return msgBoxDefaultAnswer(style);
    }
};

} // namespace

StatusSink& quietSink() {
    static QuietSink sink;
    return sink;
}
