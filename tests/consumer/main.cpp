// A host in miniature: a transport of its own, a wall made by code, one gray table sent.

#include <qualityutility/tool/sender4th/cabinetsender.h>
#include <suite/action/action.h>
#include <suite/service/modelservice.h>

#include <QCoreApplication>

#include <cstdio>

namespace {

class LoopbackTransport : public Action::Transport
{
public:
    void send(const Action::Request& request, const Action::Responder& responder) override
    {
        Parameters reply;
        reply.insert("cids", request.parameters.get<std::vector<unsigned long long>>("cids"));
        responder.reply(reply);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const auto device = std::make_shared<Model::Device>();
    device->getBase().setId("left");
    const auto cabinet = std::make_shared<Model::Cabinet>(1);
    Service::ModelService::setDevices({{device, {cabinet}}});
    Action::setTransport(std::make_shared<LoopbackTransport>());

    const std::vector<unsigned char> table(256, 128);
    const int result =
        CabinetSenderSpace::CabinetSender::setGrayScaleTable({{"left", {1}}}, table, table, table, table, 60);
    const bool isMarked = cabinet->getDisplayEffectPara().getFineGrayValid();
    std::printf("result %d, cabinet %s\n", result, isMarked ? "holds a gray table" : "holds nothing");
    Action::setTransport(nullptr);
    return result == 0 && isMarked ? 0 : 1;
}
