#include "external/MidiDouble.h"

#include <chrono>
#include <thread>

std::string hex(const unsigned char* bytes, size_t size)
{
    const QByteArray all(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    return all.toHex(' ').toUpper().toStdString();
}

std::string onAllChannels(int status, const char* data)
{
    MidiSystem list;
    for (int channel = 0; channel < MidiOutput::CHANNELS; ++channel)
        list.add(QByteArray::number(status + channel, 16).toUpper().toStdString() + ' ' + data);
    return list.take();
}

std::string bendRange(const char* semitones, const char* cents)
{
    return std::string("B0 64 00, B0 65 00, B0 06 ") + semitones + ", B0 26 " + cents
           + ", B0 64 7F, B0 65 7F";
}

namespace {

class ApiDouble : public MidiOutApi
{
public:
    explicit ApiDouble(std::shared_ptr<MidiSystem> system)
        : mSystem(std::move(system))
    {
    }

    RtMidi::Api getCurrentApi() override { return mSystem->api; }
    void openPort(unsigned int port, const std::string& name) override
    {
        const auto inside = enter();
        if (mSystem->opensFail)
            throw RtMidiError("no such device", RtMidiError::DRIVER_ERROR);
        mSystem->add("open " + std::to_string(port) + " as " + name);
        mSystem->openPort = static_cast<int>(port);
        connected_ = true;
    }
    void openVirtualPort(const std::string&) override {}
    void closePort() override
    {
        const auto inside = enter();
        if (connected_)
            mSystem->add("close");
        connected_ = false;
    }
    void setClientName(const std::string&) override {}
    void setPortName(const std::string&) override {}
    unsigned int getPortCount() override
    {
        const auto inside = enter();
        return static_cast<unsigned int>(mSystem->portNames().size());
    }
    std::string getPortName(unsigned int port) override
    {
        const auto inside = enter();
        return mSystem->portNames().value(port);
    }
    void sendMessage(const unsigned char* message, size_t size) override
    {
        const auto inside = enter();
        while (mSystem->sendsHang)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (mSystem->sendsFail)
            throw RtMidiError("the device is gone", RtMidiError::DRIVER_ERROR);
        if (mSystem->listener)
            mSystem->listener({message, size});
        else
            mSystem->add(hex(message, size));
    }

protected:
    void initialize(const std::string&) override {}

private:
    /// Tells when two threads are inside.
    std::unique_lock<std::mutex> enter()
    {
        std::unique_lock inside(mInside, std::try_to_lock);
        if (!inside)
            mSystem->enteredTwice = true;
        return inside;
    }

    const std::shared_ptr<MidiSystem> mSystem;
    std::mutex mInside;
};

RtMidi::Api lastCompiledApi()
{
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    return apis.back();
}

class OutputOverDouble : public RtMidiOut
{
public:
    explicit OutputOverDouble(const std::shared_ptr<MidiSystem>& system)
        : RtMidiOut(lastCompiledApi())
    {
        delete rtapi_;
        rtapi_ = new ApiDouble(system);
    }
};

} // namespace

QList<std::string> MidiSystem::portNames() const
{
    const std::lock_guard lock(mMutex);
    return mPorts;
}

void MidiSystem::setPorts(const QList<std::string>& names)
{
    const std::lock_guard lock(mMutex);
    mPorts = names;
}

void MidiSystem::add(const std::string& message)
{
    const std::lock_guard lock(mMutex);
    mSent += (mSent.empty() ? "" : ", ") + message;
}

std::string MidiSystem::take()
{
    if (flush)
        flush();
    const std::lock_guard lock(mMutex);
    return std::exchange(mSent, {});
}

MidiOutOverDouble::MidiOutOverDouble(int apisThatFail, bool initNow)
{
    system->apisThatFail = apisThatFail;
    system->flush = [this] { waitUntilSent(); };
    if (initNow)
        init();
}

MidiOutOverDouble::~MidiOutOverDouble()
{
    system->flush = nullptr;
}

MidiPort::Factory MidiOutOverDouble::outputFactory() const
{
    return [system = system](RtMidi::Api api) {
        system->apisTried.append(api);
        if (system->apisTried.size() <= system->apisThatFail)
            throw RtMidiError("no MIDI here " + std::to_string(system->apisTried.size()),
                              RtMidiError::DRIVER_ERROR);
        return std::make_unique<OutputOverDouble>(system);
    };
}
