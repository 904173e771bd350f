#include "support/PdReceiver.h"

#include <m_pd.h>

struct PdReceiver::Object
{
    t_pd object;
    const Hear* hear;

    static void onList(Object* self, t_symbol*, int count, t_atom* atoms)
    {
        std::vector<float> numbers;
        for (int i = 0; i < count; ++i)
            numbers.push_back(atom_getfloat(atoms + i));
        (*self->hear)(numbers);
    }
};

PdReceiver::PdReceiver(const char* symbol, Hear hear)
    : mSymbol(symbol)
    , mHear(std::move(hear))
{
    static t_class* receiverClass = [] {
        t_class* made =
            class_new(gensym("test_receiver"), nullptr, nullptr, sizeof(Object), CLASS_PD, A_NULL);
        class_addlist(made, reinterpret_cast<t_method>(&Object::onList));
        return made;
    }();
    mObject = reinterpret_cast<Object*>(pd_new(receiverClass));
    mObject->hear = &mHear;
    pd_bind(&mObject->object, gensym(mSymbol));
}

PdReceiver::~PdReceiver()
{
    pd_unbind(&mObject->object, gensym(mSymbol));
    pd_free(&mObject->object);
}
