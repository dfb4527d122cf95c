#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class MomentsBlock(object): 
    def __init__(self,block=None): 
## GUI initialization 
        
        self.VariableComClass=r'ProcessExecutive.Variables'
        self.exvardb = win32com.client.Dispatch(self.VariableComClass)
## Process Block Initialization 
        self.EXEC_MODE_NORMAL = 0
        self.EXEC_MODE_UNDO = 1
        self.EXEC_MODE_AUTO = 2
        self.InitVariables()
        self.api = win32com.client.Dispatch('ProcessExecutive.ProcessExecutiveApi')
        if(self.api != None):
            self.ExecutionMode = self.api.getExecutionType()
        else:
             self.ExecutionMode = self.EXEC_MODE_NORMAL
## End of Initialization
    def ShowDialog(self):
        pass
        return
        
    def HideDialog(self):
        pass
        return
        
    def CreateGui(self):
        pass
        
    def CreateModalGui(self):
        pass
        
    def CloseDialog(self):
        pass
        
## Default Process Block methods 
    def Execute(self):
        self.ExecuteBlock()
        return
        
    def Undo(self):
        self.UndoBlock()
        return
        
    def CanUndo(self):
        return 1
        
    def CanSkip(self):
        return 1
        
    def ExecuteBlock(self):
        return
       
    def UndoBlock(self):
        return
        
    def DrawWindow(self, window, model):
        return
        
    def PlayMacro(self):
        return
        
    def IsValidState(self):
        return 1 
        
    def InitVariables(self):
        import Kelso         
        self.Span =  0.00  
        self.Cases =  []  
        self.Design =  []  
        self.Mass =  0.00  
        self.Moment =  0.00  
        self.Governing =  r""  
        return
    def getSpan(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Span') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Span')
        else:
            returnValue=self.Span 
        return returnValue    
     

    def setSpan(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Span') == 0):
            self.exvardb.setDoubleVarValue(r'Span', newVal )
            self.Span=newVal 
        else:
            self.Span=newVal 
     

    def getCases(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Cases') == 0):
            returnValue = list(self.exvardb.getStringArrayVarValues(r'Cases'))
        else:
            returnValue=self.Cases  
        return returnValue    
     

    def setCases(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Cases') == 0):
            self.exvardb.setStringArrayVarValues(r'Cases', newVal )
            self.Cases=newVal 
        else: 
            self.Cases=newVal 
     

    def getDesign(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Design') == 0):
            returnValue = list(self.exvardb.getDoubleArrayVarValues(r'Design'))
        else:
            returnValue=self.Design  
        return returnValue    
     

    def setDesign(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Design') == 0):
            self.exvardb.setDoubleArrayVarValues(r'Design', newVal )
            self.Design=newVal 
        else: 
            self.Design=newVal 
     

    def getMass(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Mass') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Mass')
        else:
            returnValue=self.Mass 
        return returnValue    
     

    def setMass(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Mass') == 0):
            self.exvardb.setDoubleVarValue(r'Mass', newVal )
            self.Mass=newVal 
        else:
            self.Mass=newVal 
     

    def getMoment(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Moment') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Moment')
        else:
            returnValue=self.Moment 
        return returnValue    
     

    def setMoment(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Moment') == 0):
            self.exvardb.setDoubleVarValue(r'Moment', newVal )
            self.Moment=newVal 
        else:
            self.Moment=newVal 
     

    def getGoverning(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Governing') == 0):
            returnValue = self.exvardb.getStringVarValue(r'Governing')
        else:
            returnValue= self.Governing 
        return str (returnValue)    
     

    def setGoverning(self, newVal ):        
        if(self.exvardb.checkProcessVariable(r'Governing') == 0):
            self.exvardb.setStringVarValue(r'Governing', str (newVal) )
            self.Governing= str (newVal) 
        else:
            self.Governing= str (newVal) 
     

    def GetVariables(self):
        self.Span = self.getSpan()
        self.Cases = self.getCases()
        self.Design = self.getDesign()
        self.Mass = self.getMass()
        self.Moment = self.getMoment()
        self.Governing = self.getGoverning()
        return
    def UpdateVariables(self):
        self.setSpan(self.Span)
        self.setCases(self.Cases)
        self.setDesign(self.Design)
        self.setMass(self.Mass)
        self.setMoment(self.Moment)
        self.setGoverning(self.Governing)
        return
