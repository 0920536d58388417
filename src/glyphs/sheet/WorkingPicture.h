// A sheet's picture as it is worked on.
#pragma once

#include "imaging/MPicture.h"

// The picture in format 7, which is made if it has another one.
class WorkingPicture {
public:
    explicit WorkingPicture(const MPicture& picture) : made(picture.Format != FormatRGBA8) {
        view = made ? MPicture(picture, picture.Width, picture.Height, FormatRGBA8, false, false) : picture;
    }
    WorkingPicture(const WorkingPicture&) = delete;
    WorkingPicture& operator=(const WorkingPicture&) = delete;
    ~WorkingPicture() {
        if (made) view.Free();
    }

    MPicture view;

private:
    bool made;
};
