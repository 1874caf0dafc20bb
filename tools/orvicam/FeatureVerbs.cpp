#include "Camera.h"
#include "Print.h"
#include "Session.h"
#include "Verbs.h"

namespace Orvi::Tool {
namespace {

/// Collects values and prints them at the end of its camera.
class ValuePrinter {
  public:
    ValuePrinter(const Options &options, std::size_t cameras) : options_(options), several_(cameras > 1) {}

    void Add(const Feature &feature)
    {
        if (options_.json)
            values_[feature.Name()] = feature.Value();
        else
            PrintLine(prefix_ + (options_.bare ? "" : feature.Name() + "=") + feature.Text());
    }

    void Begin(const CameraEntry &camera)
    {
        serial_ = camera.serial;
        prefix_ = several_ ? serial_ + " " : "";
        values_ = Json::object();
    }
    void End() { cameras_.push_back({{"serial", serial_}, {"values", values_}}); }
    void Finish() const
    {
        if (options_.json)
            PrintLine(Dump(cameras_));
    }

  private:
    const Options &options_;
    bool several_;
    std::string serial_, prefix_;
    Json values_, cameras_ = Json::array();
};

template <class Each>
void ForEachCamera(const Options &options, const Each &each)
{
    const Session session(options.virtualCameras);
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::TheOnly);
    ValuePrinter printer(options, cameras.size());
    for (const CameraEntry &entry : cameras) {
        const Camera camera(entry);
        printer.Begin(entry);
        each(camera, printer);
        printer.End();
    }
    printer.Finish();
}

} // namespace

void Get(const Options &options)
{
    ForEachCamera(options, [&](const Camera &camera, ValuePrinter &printer) {
        for (const std::string &name : options.features)
            printer.Add(camera.Find(name));
    });
}

void Set(const Options &options)
{
    ForEachCamera(options, [&](const Camera &camera, ValuePrinter &printer) {
        for (const std::string &assignment : options.assignments) {
            const Feature feature = camera.Apply(assignment);
            // The camera may have rounded the value: what is printed is what it holds.
            if (feature.IsReadable())
                printer.Add(feature);
        }
    });
}

} // namespace Orvi::Tool
