classdef OctRendering < handle
    %OctRendering  Pictures of OCT data, drawn by the oct_rendering library.
    %
    %   oct = OctRendering('C:\oct\bin\oct_rendering.dll', 'C:\oct\share\oct_rendering\scripting\oct_rendering_scripting.h');
    %   image(oct.renderBscan(bscan, 800, 600, [20 60]));
    %   image(oct.renderVolume(volume, 800, 600, [20 60], 'angles', [30 -40]));
    %   delete(oct)
    %
    %   Arrays have depth along their first dimension: depth x A-scans for a B-scan, depth x A-scans x B-scans for a
    %   volume. Pictures are height x width x 3 of uint8, the top row first. Errors of the library are MATLAB errors with
    %   the identifier 'OctRendering:KIND', for example 'OctRendering:argument'.
    %
    %   For whatever has no method here, call(name, ...) calls a function of the library and throws its error.
    %   One object at a time: it belongs to the thread of the command window, and so does its OpenGL context.

    properties (Constant, Access = private)
        Alias = 'oct_rendering';
        Kinds = {'none', 'argument', 'state', 'opengl', 'memory', 'device', 'system'};
    end

    properties (SetAccess = private)
        Target      % an offscreen target
        Display     % draws B-scans
        Renderer    % draws volumes
        Offline     % the volume
    end

    methods
        function self = OctRendering(library, header)
            if ~libisloaded(self.Alias)
                loadlibrary(library, header, 'alias', self.Alias);
            end
            self.Target = self.call('createOffscreenTarget');
            self.Display = self.call('createDisplayRendering');
            self.call('initDisplayRendering', self.Display);
            self.Renderer = self.call('createVolumeRenderer');
            self.call('initializeVolumeRenderer', self.Renderer);
            self.Offline = self.call('createOfflineRendering');
            self.call('setOfflineRenderingRenderer', self.Offline, self.Renderer);
        end

        function delete(self)
            % What belongs to the context goes before it; whatever fails here has nobody to tell.
            if ~libisloaded(self.Alias), return; end
            if ~isempty(self.Offline), calllib(self.Alias, 'clearOfflineRendering', self.Offline); end
            if ~isempty(self.Renderer)
                calllib(self.Alias, 'uninitializeVolumeRenderer', self.Renderer);
                calllib(self.Alias, 'deleteVolumeRenderer', self.Renderer);
            end
            if ~isempty(self.Display)
                calllib(self.Alias, 'uninitDisplayRendering', self.Display);
                calllib(self.Alias, 'clearDisplayRendering', self.Display);
            end
            if ~isempty(self.Target), calllib(self.Alias, 'clearOffscreenTarget', self.Target); end
        end

        function picture = renderBscan(self, bscan, width, height, range, colors)
            %renderBscan  A B-scan, stretched over the picture.
            %   range: the values of the first and the last colour. colors: n x 3 or n x 4, 0 to 1, as of colormap;
            %   gray if it is left out.
            if nargin < 6, colors = gray(256); end
            bscan = single(bscan);
            self.call('setDisplayData', self.Display, size(bscan, 1), size(bscan, 2), bscan(:));
            self.call('setDisplayColoringBoundaries', self.Display, range(1), range(2));
            map = OctRendering.packed(colors, ones(size(colors, 1), 1));
            self.call('setDisplayColormap', self.Display, libpointer('uint8Ptr', map), size(colors, 1));
            picture = self.frame(width, height, @() self.call('renderDisplay', self.Display));
        end

        function picture = renderVolume(self, volume, width, height, range, varargin)
            %renderVolume  A volume, by options in pairs:
            %   'mode'    0 composite (at first), 1 maximum, 2 mean
            %   'angles'  degrees about the screen's horizontal axis and about the axis of depth; [30 -40]
            %   'extent'  millimetres along the three dimensions; the numbers of voxels
            %   'colors'  n x 3 or n x 4, the fourth column being opacity; gray with rising opacity
            %   'slices'  steps of a ray; 256
            options = inputParser;
            options.addParameter('mode', 0);
            options.addParameter('angles', [30 -40]);
            options.addParameter('extent', [size(volume, 1) size(volume, 2) size(volume, 3)]);
            options.addParameter('colors', gray(256));
            options.addParameter('slices', 256);
            options.parse(varargin{:});
            chosen = options.Results;
            volume = single(volume);
            extent = single(chosen.extent);
            self.call('setOfflineAspectRatio', self.Offline, extent(1), extent(2), extent(3));
            self.call('allocateOfflineVolume', self.Offline, size(volume, 1), size(volume, 2), size(volume, 3));
            self.call('uploadOfflineVolume', self.Offline, volume(:));
            self.call('setVolumeMode', self.Renderer, chosen.mode);
            self.call('setAngles', self.Renderer, chosen.angles(1), chosen.angles(2));
            self.call('setRenderingSlices', self.Renderer, chosen.slices);
            self.call('setRendererColoringBoundaries', self.Renderer, range(1), range(2));
            count = size(chosen.colors, 1);
            map = OctRendering.packed(chosen.colors, 0.25 * linspace(0, 1, count)' .^ 2);
            self.call('setRendererColormap', self.Renderer, libpointer('uint8Ptr', map), count);
            picture = self.frame(width, height, @() self.call('renderOfflineVolume', self.Offline, 0));
        end

        function varargout = call(self, name, varargin)
            %call  Calls a function of the library by its name and throws its error.
            [varargout{1:max(nargout, 0)}] = calllib(self.Alias, name, varargin{:});
            if calllib(self.Alias, 'isRendererError') == 0, return; end
            kind = calllib(self.Alias, 'getRendererErrorKind');
            [pending, text] = calllib(self.Alias, 'getOwnRendererError', blanks(1024), 1024);
            if pending ~= 0
                error(['OctRendering:' self.Kinds{kind + 1}], '%s', text);
            end
        end
    end

    methods (Access = private)
        function picture = frame(self, width, height, draw)
            self.call('beginOffscreenFrame', self.Target, width, height);
            pixels = libpointer('uint8Ptr', zeros(1, 4 * width * height, 'uint8'));
            try
                draw();
            catch problem
                calllib(self.Alias, 'finishOffscreenFrame', self.Target, libpointer);
                rethrow(problem);
            end
            self.call('finishOffscreenFrameAs', self.Target, 3, pixels); % red first, the top row first
            picture = permute(reshape(pixels.Value, 4, width, height), [3 2 1]);
            picture = picture(:, :, 1:3);
        end
    end

    methods (Static, Access = private)
        function bytes = packed(colors, opacity)
            if size(colors, 2) == 3, colors = [colors opacity]; end
            bytes = uint8(round(255 * colors'));
            bytes = bytes(:)';
        end
    end
end
