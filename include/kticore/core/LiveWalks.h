// The live enumerators of a container, chained through the enumerators
// themselves, so that the container can move them off what it removes. A
// walk derives from CTLiveWalk<Walk> and is in its owner's CTLiveWalks<Walk>
// for its life.
#pragma once

template <class Walk>
class CTLiveWalks;

template <class Walk>
class CTLiveWalk {
private:
    friend class CTLiveWalks<Walk>;

    Walk* nextWalk = nullptr;
    Walk* previousWalk = nullptr;
};

template <class Walk>
class CTLiveWalks {
public:
    void Attach(Walk* walk) {
        Links(walk).nextWalk = first;
        if (first != nullptr)
            Links(first).previousWalk = walk;
        first = walk;
    }

    void Detach(Walk* walk) {
        CTLiveWalk<Walk>& links = Links(walk);
        if (links.previousWalk != nullptr)
            Links(links.previousWalk).nextWalk = links.nextWalk;
        else
            first = links.nextWalk;
        if (links.nextWalk != nullptr)
            Links(links.nextWalk).previousWalk = links.previousWalk;
    }

    template <class Visit>
    void ForEach(Visit visit) const {
        for (Walk* walk = first; walk != nullptr; walk = Links(walk).nextWalk)
            visit(*walk);
    }

private:
    static CTLiveWalk<Walk>& Links(Walk* walk) { return *walk; }

    Walk* first = nullptr;
};
